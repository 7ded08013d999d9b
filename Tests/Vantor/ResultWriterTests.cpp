#include "Export/ResultFormat.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

KNValue text(const char *utf8)
{
    return KNValue(QString::fromUtf8(utf8));
}

struct Result
{
    QStringList columns;
    QList<KNRow> rows;
};

QByteArray written(const char *format, const QList<Result> &results)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    const auto writer = ResultFormat::named(QString::fromLatin1(format))
                            ->createWriter({.device = buffer, .hasManyResults = true});
    writer->beginRun();
    for (const Result &result : results) {
        writer->beginResult(result.columns);
        ResultTesting::writeRows(*writer, result.rows);
        writer->endResult();
    }
    writer->endRun();
    EXPECT_TRUE(writer->isGood());
    return buffer.data();
}

const Result oneOfEach = {
    {QStringLiteral("null"), QStringLiteral("bit"), QStringLiteral("bigint"), QStringLiteral("float"),
     QStringLiteral("decimal"), QStringLiteral("text"), QStringLiteral("date"), QStringLiteral("bytes"),
     QStringLiteral("empty")},
    {{KNValue(), KNValue(true), KNValue(std::numeric_limits<qint64>::min()), KNValue(0.1),
      KNValue(*KNDecimal::fromString(u"-12345678901234567890.10")), text("a,\"b\"\r\nc"),
      KNValue(KNDateTime{1, KNDateTime::Parts::DateAndTime, 7}), KNValue(QByteArray("\0\xff", 2)), text("")}},
};

/// A device that takes a few bytes and then no more.
class FullDevice : public QIODevice
{
protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64) override { return -1; }
};

} // namespace

TEST(CsvFormat, KeepsEveryValueApartFromEveryOther)
{
    EXPECT_EQ(written("csv", {oneOfEach}),
              QByteArray("null,bit,bigint,float,decimal,text,date,bytes,empty\n"
                         ",1,-9223372036854775808,0.1,-12345678901234567890.10,\"a,\"\"b\"\"\r\nc\","
                         "1900-01-01 00:00:00.0000001,0x00FF,\"\"\n"));
}

TEST(CsvFormat, QuotesNamesAndOuterBlanks)
{
    EXPECT_EQ(written("csv", {{{QStringLiteral("a,b"), QStringLiteral("")}, {{text(" x"), text("naïve")}}}}),
              QByteArray("\"a,b\",\"\"\n\" x\",naïve\n"));
}

TEST(CsvFormat, HasNoEmptyLineForARowThatIsNull)
{
    EXPECT_EQ(written("csv", {{{QStringLiteral("a")},
                               {{KNValue()}, {text("")}, {text("NULL")}, {text("null")}, {KNValue(1)}}}}),
              QByteArray("a\nNULL\n\"\"\n\"NULL\"\nnull\n1\n"));
    EXPECT_EQ(written("csv", {{{QStringLiteral("a"), QStringLiteral("b")}, {{KNValue(), text("NULL")}}}}),
              QByteArray("a,b\n,NULL\n"));
}

TEST(CsvFormat, QuotesBlanksBeyondAscii)
{
    EXPECT_EQ(written("csv", {{{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")},
                               {{text("\u00A0x"), text("x\u3000"), text("あい…")}}}}),
              QByteArray("a,b,c\n\"\u00A0x\",\"x\u3000\",あい…\n"));
}

TEST(CsvFormat, PutsAnEmptyLineBetweenResults)
{
    EXPECT_EQ(written("csv", {{{QStringLiteral("a")}, {}}, {{QStringLiteral("b")}, {{KNValue(1)}}}}),
              QByteArray("a\n\nb\n1\n"));
}

TEST(JsonFormat, KeepsEveryValue)
{
    const QByteArray json = written("json", {oneOfEach});
    EXPECT_TRUE(json.contains("[null, true, -9223372036854775808, 0.1, -12345678901234567890.10, "
                              "\"a,\\\"b\\\"\\r\\nc\", \"1900-01-01 00:00:00.0000001\", \"0x00FF\", \"\"]"))
        << json.toStdString();
}

TEST(JsonFormat, IsJsonForAnyNumberOfResultsAndRows)
{
    for (const QList<Result> &results :
         {QList<Result>{}, QList<Result>{{{QStringLiteral("a")}, {}}}, QList<Result>{oneOfEach, oneOfEach}}) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(written("json", results), &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
        ASSERT_EQ(document.array().size(), results.size());
        for (qsizetype i = 0; i < results.size(); ++i) {
            const QJsonObject object = document.array().at(i).toObject();
            EXPECT_EQ(object.value(QStringLiteral("columns")).toArray().size(), results[i].columns.size());
            EXPECT_EQ(object.value(QStringLiteral("rows")).toArray().size(), results[i].rows.size());
        }
    }
}

TEST(JsonFormat, EscapesControlCharacters)
{
    const QByteArray json =
        written("json", {{{QStringLiteral("a")}, {{KNValue(QString::fromUtf16(u"\x01\\\t🐘", 5))}}}});
    EXPECT_TRUE(json.contains("\"\\u0001\\\\\\t🐘\"")) << json.toStdString();
}

TEST(JsonFormat, WritesNonFiniteNumbersAsStrings)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const QByteArray json = written("json", {{{QStringLiteral("a")},
                                              {{KNValue(infinity)},
                                               {KNValue(-infinity)},
                                               {KNValue(std::numeric_limits<double>::quiet_NaN())},
                                               {KNValue(std::numeric_limits<float>::infinity())}}}});
    EXPECT_TRUE(json.contains("[\"inf\"],\n  [\"-inf\"],\n  [\"nan\"],\n  [\"inf\"]")) << json.toStdString();
}

TEST(TableFormat, EscapesTerminalControlCharacters)
{
    const QByteArray table =
        written("table", {{{QString::fromUtf8("h\u202e")},
                           {{KNValue(QString::fromUtf16(u"\x1b[31m\x1b]0;t\a\u202E\u0085\u2066\u007F"))}}}});
    EXPECT_EQ(table, QByteArray("h\\u202e\n"
                                "--------------------------------------------------\n"
                                "\\u001b[31m\\u001b]0;t\\u0007\\u202e\\u0085\\u2066\\u007f\n\n"));
}

TEST(TableFormat, AlignsColumnsAndPutsNumbersToTheRight)
{
    EXPECT_EQ(written("table", {{{QStringLiteral("id"), QStringLiteral("name")},
                                 {{KNValue(1), text("x")}, {KNValue(100), KNValue()}}}}),
              QByteArray("id   name\n"
                         "---  ----\n"
                         "  1  x\n"
                         "100  NULL\n"
                         "\n"));
}

TEST(TableFormat, ShowsLineEndsAsSigns)
{
    EXPECT_TRUE(written("table", {{{QStringLiteral("a")}, {{text("x\ny\tz")}}}}).contains("x↵y⇥z"));
}

TEST(TableFormat, CutsNoValueThatComesLate)
{
    Result result = {{QStringLiteral("a")}, {}};
    for (int i = 0; i < 300; ++i)
        result.rows.append({KNValue(i)});
    const QString late(50, QLatin1Char('x'));
    result.rows.append({KNValue(late)});
    EXPECT_TRUE(written("table", {result}).contains(late.toUtf8()));
}

TEST(ResultFormats, ReportWriteFailure)
{
    FullDevice device;
    device.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    const auto writer = ResultFormat::named(QStringLiteral("csv"))->createWriter({.device = device});
    writer->beginResult({QStringLiteral("a")});
    writer->endResult();
    EXPECT_FALSE(writer->isGood());
}

TEST(ResultFormats, OfTheTerminalAreFour)
{
    EXPECT_EQ(ResultFormat::namesFor(ResultFormat::Terminal),
              (QStringList{QStringLiteral("table"), QStringLiteral("csv"), QStringLiteral("json"),
                           QStringLiteral("markdown")}));
    EXPECT_EQ(ResultFormat::named(QStringLiteral("xml")), nullptr);
}

TEST(ResultFormats, HoldManyResultsInMarkdown)
{
    EXPECT_EQ(
        written("markdown", {{{QStringLiteral("id"), QStringLiteral("name")}, {{KNValue(1), text("a|b")}}},
                             {{QStringLiteral("n")}, {{KNValue(2)}}}}),
        "| id | name |\n| ---: | --- |\n| 1 | a\\|b |\n\n| n |\n| ---: |\n| 2 |\n");
}
