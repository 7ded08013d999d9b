#include "Export/ExcelWriter.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QMap>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>

using namespace ResultTesting;

namespace {

/// A cell of a sheet: its type as the file has it ("n" where it has none), its style, and what it holds.
struct Cell
{
    QString type;
    QString style;
    QString content;
};

/// A workbook in a folder of its own.
class Workbook
{
public:
    explicit Workbook(qint64 rowsPerSheet = ExcelWriter::RowsPerSheet)
        : writer(m_folder.filePath(QStringLiteral("a.xlsx")), rowsPerSheet)
    {
    }

    void write(const QStringList &columns, const QList<KNRow> &rows)
    {
        writer.beginRun();
        writer.beginResult(columns);
        writeRows(writer, rows);
        writer.endResult();
        writer.endRun();
        EXPECT_TRUE(writer.isGood());
    }

    /// A file of the archive.
    QByteArray part(const QString &name) const
    {
        QProcess python;
        python.start(
            QStringLiteral("python3"),
            {QStringLiteral("-c"),
             QStringLiteral("import sys, zipfile; "
                            "sys.stdout.buffer.write(zipfile.ZipFile(sys.argv[1]).read(sys.argv[2]))"),
             m_folder.filePath(QStringLiteral("a.xlsx")), name});
        python.waitForFinished();
        return python.readAllStandardOutput();
    }

    QMap<QString, Cell> cells(int sheet = 1) const
    {
        QXmlStreamReader xml(part(QStringLiteral("xl/worksheets/sheet%1.xml").arg(sheet)));
        QMap<QString, Cell> cells;
        QString place;
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.isStartElement() && xml.name() == QLatin1String("c")) {
                place = xml.attributes().value(QLatin1String("r")).toString();
                const auto type = xml.attributes().value(QLatin1String("t"));
                cells[place] = {type.isEmpty() ? QStringLiteral("n") : type.toString(),
                                xml.attributes().value(QLatin1String("s")).toString(),
                                {}};
            } else if (xml.isCharacters() && !place.isEmpty()) {
                cells[place].content += xml.text();
            } else if (xml.isEndElement() && xml.name() == QLatin1String("c")) {
                place.clear();
            }
        }
        return cells;
    }

private:
    QTemporaryDir m_folder;

public:
    ExcelWriter writer;
};

KNValue dateTime(int year, int month, int day, const QTime &time = QTime(0, 0))
{
    return KNValue(QDateTime(QDate(year, month, day), time, Qt::UTC));
}

class ExcelFile : public testing::Test
{
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty())
            GTEST_SKIP() << "python3 reads the files";
    }
};

} // namespace

TEST_F(ExcelFile, HoldsNumbersAsNumbersWhereTheyStayExact)
{
    Workbook workbook;
    workbook.write({QStringLiteral("a")},
                   {{KNValue(42), KNValue(qint64{999'999'999'999'999}),
                     KNValue(qint64{9'007'199'254'740'993}), decimal(u"-12.50"),
                     decimal(u"12345678901234567890.10"), KNValue(0.1F), KNValue(true), KNValue(0.1 + 0.2)}});
    const auto cells = workbook.cells();
    EXPECT_EQ(cells[QStringLiteral("A2")].type, QStringLiteral("n"));
    EXPECT_EQ(cells[QStringLiteral("A2")].content, QStringLiteral("42"));
    EXPECT_EQ(cells[QStringLiteral("B2")].content, QStringLiteral("999999999999999"));
    EXPECT_EQ(cells[QStringLiteral("B2")].type, QStringLiteral("n"));
    EXPECT_EQ(cells[QStringLiteral("C2")].type, QStringLiteral("inlineStr"));
    EXPECT_EQ(cells[QStringLiteral("C2")].content, QStringLiteral("9007199254740993"));
    EXPECT_EQ(cells[QStringLiteral("D2")].type, QStringLiteral("n"));
    EXPECT_EQ(cells[QStringLiteral("D2")].content, QStringLiteral("-12.5"));
    EXPECT_EQ(cells[QStringLiteral("E2")].type, QStringLiteral("inlineStr"));
    EXPECT_EQ(cells[QStringLiteral("E2")].content, QStringLiteral("12345678901234567890.10"));
    EXPECT_EQ(cells[QStringLiteral("F2")].content, QStringLiteral("0.1"));
    EXPECT_EQ(cells[QStringLiteral("G2")].type, QStringLiteral("b"));
    EXPECT_EQ(cells[QStringLiteral("H2")].type, QStringLiteral("n"));
    EXPECT_EQ(
        workbook.writer.remarks(),
        (QStringList{QStringLiteral("2 numbers are text: they have more digits than a cell's number keeps."),
                     QStringLiteral("One floating number was rounded to 16 digits.")}));
}

TEST_F(ExcelFile, HoldsDatesAsDatesWhereTheyStayExact)
{
    const KNValue fine(KNDateTime{.ticks = 450'000'000'000'000'001, .fractionDigits = 7});
    const KNValue noon(KNDateTime{.ticks = 12 * 3600 * KNDateTime::TicksPerSecond,
                                  .parts = KNDateTime::Parts::Time,
                                  .fractionDigits = 7});
    const KNValue day(
        KNDateTime{.ticks = KNDateTime::TicksPerSecond * 86'400 * 45'349, .parts = KNDateTime::Parts::Date});
    Workbook workbook;
    workbook.write({QStringLiteral("a")}, {{dateTime(2024, 2, 29, QTime(12, 0)), day, noon, fine,
                                            dateTime(1900, 2, 28), dateTime(1900, 3, 1)}});
    const auto cells = workbook.cells();
    EXPECT_EQ(cells[QStringLiteral("A2")].content, QStringLiteral("45351.5"));
    EXPECT_EQ(cells[QStringLiteral("B2")].content, QStringLiteral("45351"));
    EXPECT_EQ(cells[QStringLiteral("C2")].content, QStringLiteral("0.5"));
    EXPECT_EQ(cells[QStringLiteral("F2")].content, QStringLiteral("61"));
    for (const char *const place : {"A2", "B2", "C2", "F2"}) {
        EXPECT_EQ(cells[QString::fromLatin1(place)].type, QStringLiteral("n")) << place;
        EXPECT_FALSE(cells[QString::fromLatin1(place)].style.isEmpty()) << place;
    }
    EXPECT_EQ(cells[QStringLiteral("D2")].type, QStringLiteral("inlineStr"));
    EXPECT_EQ(cells[QStringLiteral("D2")].content, fine.displayText());
    EXPECT_EQ(cells[QStringLiteral("E2")].content, QStringLiteral("1900-02-28 00:00:00.000"));
    EXPECT_EQ(workbook.writer.remarks().size(), 1);
    EXPECT_TRUE(workbook.part(QStringLiteral("xl/styles.xml")).contains("yyyy-mm-dd hh:mm:ss.000"));
}

TEST_F(ExcelFile, WritesDatesThatACellCannotHoldAsText)
{
    Workbook workbook;
    const KNValue offset(KNDateTime{.ticks = 50'000 * KNDateTime::TicksPerDay, .offsetMinutes = -30});
    const KNValue endOfDay(KNDateTime{KNDateTime::TicksPerDay, KNDateTime::Parts::Time, 0});
    workbook.write({QStringLiteral("a"), QStringLiteral("b")}, {{offset, endOfDay}});
    const auto cells = workbook.cells();
    EXPECT_EQ(cells[QStringLiteral("A2")].type, QStringLiteral("inlineStr"));
    EXPECT_TRUE(cells[QStringLiteral("A2")].content.endsWith(QStringLiteral(" 23:30:00.000 -00:30")));
    EXPECT_EQ(cells[QStringLiteral("B2")].type, QStringLiteral("inlineStr"));
    EXPECT_EQ(cells[QStringLiteral("B2")].content, QStringLiteral("24:00:00"));
    EXPECT_EQ(workbook.writer.remarks().size(), 1);
}

TEST_F(ExcelFile, LeavesNullEmptyAndWritesTextAndBytes)
{
    Workbook workbook;
    workbook.write({QStringLiteral("n"), QStringLiteral("t"), QStringLiteral("b")},
                   {{KNValue(), text("=1+1 <&> naïve 🐘"), KNValue(QByteArray("\0\xff", 2))}});
    const auto cells = workbook.cells();
    EXPECT_EQ(cells[QStringLiteral("A1")].content, QStringLiteral("n"));
    EXPECT_FALSE(cells.contains(QStringLiteral("A2")));
    EXPECT_EQ(cells[QStringLiteral("B2")].content, QStringLiteral("=1+1 <&> naïve 🐘"));
    EXPECT_EQ(cells[QStringLiteral("B2")].type, QStringLiteral("inlineStr"));
    EXPECT_EQ(cells[QStringLiteral("C2")].content, QStringLiteral("0x00FF"));
    EXPECT_TRUE(workbook.writer.remarks().isEmpty());
}

TEST_F(ExcelFile, TruncatesLongTextWithNotice)
{
    Workbook workbook;
    workbook.write({QStringLiteral("a")},
                   {{KNValue(QString(ExcelWriter::LongestText, QLatin1Char('x'))),
                     KNValue(QString(ExcelWriter::LongestText + 1, QLatin1Char('y')))}});
    EXPECT_EQ(workbook.cells()[QStringLiteral("A2")].content.size(), ExcelWriter::LongestText);
    EXPECT_EQ(workbook.cells()[QStringLiteral("B2")].content.size(), ExcelWriter::LongestText);
    EXPECT_EQ(workbook.writer.remarks(),
              QStringList{QStringLiteral("One value was cut: a cell holds no more than 32767 characters.")});
}

TEST_F(ExcelFile, GoesOnInAFurtherSheetWithItsOwnHeader)
{
    Workbook workbook(4);
    QList<KNRow> rows;
    for (int row = 0; row < 7; ++row)
        rows.append({KNValue(row)});
    workbook.write({QStringLiteral("a")}, rows);
    EXPECT_EQ(workbook.cells(1).size(), 4);
    EXPECT_EQ(workbook.cells(2).size(), 4);
    EXPECT_EQ(workbook.cells(3).size(), 2);
    EXPECT_EQ(workbook.cells(2)[QStringLiteral("A1")].content, QStringLiteral("a"));
    EXPECT_EQ(workbook.cells(2)[QStringLiteral("A2")].content, QStringLiteral("3"));
    EXPECT_EQ(workbook.cells(3)[QStringLiteral("A2")].content, QStringLiteral("6"));
    EXPECT_EQ(workbook.writer.remarks().size(), 1);
}

TEST(ExcelWriter, ReportsWriteFailure)
{
    ExcelWriter writer(QStringLiteral("/nonexistent/a.xlsx"));
    writer.beginRun();
    writer.beginResult({QStringLiteral("a")});
    writeRows(writer, {{KNValue(1)}});
    writer.endResult();
    writer.endRun();
    EXPECT_FALSE(writer.isGood());
}

TEST_F(ExcelFile, HasWidthsForNamesAndValuesAndAFrozenHeader)
{
    Workbook workbook;
    workbook.write({QStringLiteral("id"), QStringLiteral("a name of many letters"), QStringLiteral("long")},
                   {{KNValue(1), text("x"), KNValue(QString(500, QLatin1Char('m')))}});
    QXmlStreamReader xml(workbook.part(QStringLiteral("xl/worksheets/sheet1.xml")));
    QList<double> widths;
    bool isFrozen = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("col"))
            widths.append(xml.attributes().value(QLatin1String("width")).toDouble());
        if (xml.isStartElement() && xml.name() == QLatin1String("pane"))
            isFrozen = xml.attributes().value(QLatin1String("ySplit")).toString() == QLatin1String("1") &&
                       xml.attributes().value(QLatin1String("state")).toString() == QLatin1String("frozen");
    }
    ASSERT_EQ(widths.size(), 3);
    EXPECT_LT(widths[0], 12);
    EXPECT_GE(widths[1], 22);
    EXPECT_LT(widths[1], 30);
    EXPECT_GE(widths[2], 50);
    EXPECT_LE(widths[2], 62);
    EXPECT_TRUE(isFrozen);
}
