#include "Export/CsvWriter.h"
#include "Export/ResultCopy.h"
#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace ResultTesting;

namespace {

namespace Format {
constexpr auto Text = "text";
constexpr auto TextWithHeaders = "text-with-headers";
constexpr auto Csv = "csv";
constexpr auto Json = "json";
constexpr auto Insert = "insert";
constexpr auto InList = "in-list";
constexpr auto Markdown = "markdown";
} // namespace Format

ResultRows all(const KNDatabaseResultSetPtr &result)
{
    ResultRows rows{result, nullptr, {{0, result->rows().rowCount()}}, {}};
    for (qsizetype column = 0; column < result->columnNames().size(); ++column)
        rows.columns.append(column);
    return rows;
}

ResultCopy copyOf(const ResultRows &rows, const char *format, qint64 largestSize = ResultCopy::LargestSize)
{
    FakeDatabase::Server server;
    const std::atomic<bool> cancelled = false;
    return ResultCopy::make(rows, *ResultFormat::named(QString::fromLatin1(format)),
                            FakeDatabase::Settings(server).copy(), QStringLiteral("NULL"), cancelled,
                            largestSize);
}

QString copied(const KNDatabaseResultSetPtr &result, const char *format)
{
    return copyOf(all(result), format).text;
}

KNDatabaseResultSetPtr people()
{
    return result({QStringLiteral("id"), QStringLiteral("name")},
                  {{KNValue(1), text("O'Brien")}, {KNValue(2), KNValue()}, {KNValue(3), text("NULL")}});
}

KNDatabaseResultSetPtr oddTexts()
{
    return result({QStringLiteral("a\"b"), QStringLiteral("a|b")},
                  {{text("tab\there"), text("line\r\nend")}, {text("\"quoted\""), text("a|*b*")}});
}

} // namespace

TEST(CopiedText, IsTabSeparatedWithNullApartFromText)
{
    EXPECT_EQ(copied(people(), Format::Text), QStringLiteral("1\tO'Brien\n2\tNULL\n3\t\"NULL\""));
    EXPECT_EQ(copied(people(), Format::TextWithHeaders),
              QStringLiteral("id\tname\n1\tO'Brien\n2\tNULL\n3\t\"NULL\""));
}

TEST(CopiedText, QuotesTabsAndLineEnds)
{
    EXPECT_EQ(copied(oddTexts(), Format::Text),
              QStringLiteral("\"tab\there\"\t\"line\r\nend\"\n\"\"\"quoted\"\"\"\ta|*b*"));
}

TEST(CopiedText, OfOneValueIsTheValue)
{
    const auto one = [](const KNValue &value) { return result({QStringLiteral("a")}, {{value}}); };
    EXPECT_EQ(copied(one(text("tab\there \"x\"")), Format::Text), QStringLiteral("tab\there \"x\""));
    EXPECT_EQ(copied(one(KNValue()), Format::Text), QStringLiteral("NULL"));
    EXPECT_EQ(copied(one(text("NULL")), Format::Text), QStringLiteral("NULL"));
    EXPECT_EQ(copied(one(text("")), Format::Text), QStringLiteral(""));
}

TEST(CopiedCsv, HasQuotesAndNullAsTheExportHas)
{
    EXPECT_EQ(copied(people(), Format::Csv), QStringLiteral("id,name\n1,O'Brien\n2,\n3,NULL\n"));
}

TEST(CopiedJson, IsAListOfObjectsInTheOrderOfTheColumns)
{
    EXPECT_EQ(copied(people(), Format::Json), QStringLiteral("[\n  {\"id\": 1, \"name\": \"O'Brien\"},\n"
                                                             "  {\"id\": 2, \"name\": null},\n"
                                                             "  {\"id\": 3, \"name\": \"NULL\"}\n]\n"));
    EXPECT_EQ(copied(result({QStringLiteral("a")}, {}), Format::Json), QStringLiteral("[]\n"));
}

TEST(CopiedJson, UsesUniqueColumnNames)
{
    const QString json = copied(result({QStringLiteral("a"), QStringLiteral("a"), QStringLiteral("a 2"),
                                        QStringLiteral(""), QStringLiteral("a")},
                                       {{KNValue(1), KNValue(2), KNValue(3), KNValue(4), KNValue(5)}}),
                                Format::Json);
    const QJsonObject object = QJsonDocument::fromJson(json.toUtf8()).array().at(0).toObject();
    EXPECT_EQ(object.size(), 5);
    EXPECT_EQ(object.value(QStringLiteral("a")), 1);
    EXPECT_EQ(object.value(QStringLiteral("a 3")), 2);
    EXPECT_EQ(object.value(QStringLiteral("a 2")), 3);
    EXPECT_EQ(object.value(QStringLiteral("column 4")), 4);
    EXPECT_EQ(object.value(QStringLiteral("a 4")), 5);
}

TEST(CopiedInsert, QuotesNamesAndValues)
{
    EXPECT_EQ(copied(people(), Format::Insert),
              QStringLiteral("INSERT INTO table_name (\"id\", \"name\") VALUES\r\n"
                             "\t(1, 'O''Brien'),\r\n"
                             "\t(2, NULL),\r\n"
                             "\t(3, 'NULL');\r\n"));
}

TEST(CopiedInsert, BeginsAnewAfterAThousandRows)
{
    const QString sql = copied(numberedRows(2001), Format::Insert);
    EXPECT_EQ(sql.count(QStringLiteral("INSERT INTO")), 3);
    EXPECT_EQ(sql.count(QStringLiteral(";\r\n")), 3);
    EXPECT_TRUE(sql.contains(QStringLiteral("(999, 'row 999');\r\nINSERT INTO")));
    EXPECT_EQ(copied(numberedRows(0), Format::Insert), QStringLiteral(""));
}

TEST(CopiedInList, HoldsEveryValueOnceAndNoNull)
{
    const auto values = result({QStringLiteral("a")},
                               {{text("x")}, {KNValue()}, {text("O'Brien")}, {text("x")}, {text("NULL")}});
    const ResultCopy copy = copyOf(all(values), Format::InList);
    EXPECT_EQ(copy.text, QStringLiteral("('x', 'O''Brien', 'NULL')"));
    EXPECT_EQ(copy.remarks.size(), 1);
    EXPECT_TRUE(copyOf(all(numberedRows(1)), Format::InList).remarks.isEmpty());
}

TEST(CopiedMarkdown, EscapesMarkup)
{
    EXPECT_EQ(copied(oddTexts(), Format::Markdown), QStringLiteral("| a\"b | a\\|b |\n| --- | --- |\n"
                                                                   "| tab\there | line<br>end |\n"
                                                                   "| \"quoted\" | a\\|\\*b\\* |\n"));
    EXPECT_EQ(
        copied(people(), Format::Markdown),
        QStringLiteral("| id | name |\n| ---: | --- |\n| 1 | O'Brien |\n| 2 | *NULL* |\n| 3 | NULL |\n"));
}

TEST(CopiedRows, AreThoseThatWereChosenInTheirOrder)
{
    ResultRows rows = all(numberedRows(10));
    rows.order = std::make_shared<KNRowOrder>(KNRowOrder{9, 8, 7, 6, 5});
    rows.ranges = {{0, 1}, {3, 2}};
    rows.columns = {1};
    EXPECT_EQ(copyOf(rows, Format::Text).text, QStringLiteral("row 9\nrow 6\nrow 5"));
}

TEST(CopiedRows, StopAtLimitWithNotice)
{
    const ResultCopy copy = copyOf(all(numberedRows(100'000)), Format::Text, 300'000);
    EXPECT_GT(copy.rowsLeftOut, 0);
    EXPECT_LT(copy.rowsLeftOut, 100'000);
    EXPECT_EQ(copy.text.count(QLatin1Char('\n')) + 1, 100'000 - copy.rowsLeftOut);
    EXPECT_EQ(copyOf(all(numberedRows(100'000)), Format::Text).rowsLeftOut, 0);
}

TEST(CopiedRows, HoldStoredValuesInEveryFormat)
{
    const auto stored = std::make_shared<KNDatabaseResultSet>();
    stored->setColumns({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}, {43, 122, 98});
    KNRowStore &rows = stored->rows();
    rows.beginRow();
    rows.appendDate({.ticks = 0, .fractionDigits = 3, .offsetMinutes = 90});
    rows.appendFloatMoney(2147483647);
    rows.appendFlagBytes("\x0a\xff", 2);
    rows.endRow();
    rows.publish();
    stored->setFinished();
    const QString date = QStringLiteral("1900-01-01 01:30:00.000 +01:30");
    const QString money = QStringLiteral("214748.3647");
    EXPECT_EQ(copied(stored, Format::Text), date + QLatin1Char('\t') + money + QStringLiteral("\t0x0AFF"));
    EXPECT_EQ(copied(stored, Format::Csv),
              QStringLiteral("a,b,c\n") + date + QLatin1Char(',') + money + QStringLiteral(",0x0AFF\n"));
    for (const char *const format : {Format::Json, Format::Insert, Format::InList, Format::Markdown}) {
        const QString text = copied(stored, format);
        EXPECT_TRUE(text.contains(QStringLiteral("01:30:00.000"))) << text.toStdString();
        EXPECT_TRUE(text.contains(money)) << text.toStdString();
        EXPECT_TRUE(text.contains(QStringLiteral("0AFF"))) << text.toStdString();
    }
}

namespace {

/// One result in CSV with options.
QByteArray csvOf(const CsvOptions &options, const QStringList &columns, const QList<KNRow> &rows)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    CsvWriter writer(buffer, options);
    writer.beginRun();
    writer.beginResult(columns);
    writeRows(writer, rows);
    writer.endResult();
    writer.endRun();
    return buffer.data();
}

const QStringList TwoColumns = {QStringLiteral("a;b"), QStringLiteral("c")};

} // namespace

TEST(CsvOptions, ChangeSeparatorAndHeader)
{
    const QList<KNRow> rows = {{text("x;y"), text("x,y")}, {decimal(u"1.5"), KNValue()}};
    EXPECT_EQ(csvOf({.separator = ';'}, TwoColumns, rows), QByteArray("\"a;b\";c\n\"x;y\";x,y\n1.5;\n"));
    EXPECT_EQ(csvOf({.separator = '\t', .hasHeader = false}, TwoColumns, rows),
              QByteArray("x;y\tx,y\n1.5\t\n"));
}

TEST(CsvOptions, QuoteEveryValueButNull)
{
    EXPECT_EQ(csvOf({.quotesAlways = true}, TwoColumns, {{text("x\"y"), KNValue(5)}, {text(""), KNValue()}}),
              QByteArray("\"a;b\",\"c\"\n\"x\"\"y\",\"5\"\n\"\",\n"));
}

TEST(CsvOptions, ReplaceNullAndQuoteTheSameText)
{
    EXPECT_EQ(csvOf({.hasHeader = false, .nullText = QStringLiteral("\\N")}, TwoColumns,
                    {{KNValue(), text("\\N")}, {text(""), text("N")}}),
              QByteArray("\\N,\"\\N\"\n\"\",N\n"));
    EXPECT_EQ(csvOf({.hasHeader = false, .nullText = QStringLiteral("-")}, {QStringLiteral("a")},
                    {{KNValue()}, {text("NULL")}, {text("-")}}),
              QByteArray("-\nNULL\n\"-\"\n"));
}
