#include "Export/ResultExporter.h"
#include "Foundation/KNDispatch.h"
#include "Support/FullDisk.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace ResultTesting;

namespace {

struct Outcome
{
    bool complete = false;
    KNError error;
    QStringList remarks;
};

ResultRows rowsOf(const KNDatabaseResultSetPtr &result)
{
    return {result, nullptr, {{0, result->rows().rowCount()}}, {0, 1}};
}

/// Runs an export to its end. `begun` is called when it has been started.
Outcome exported(const ResultRows &rows, const QString &path,
                 const std::function<void(ResultExporter &)> &begun = {})
{
    const auto exporter = std::make_shared<ResultExporter>(rows, path);
    Outcome outcome;
    bool isFinished = false;
    exporter->start([&](bool complete, const KNError &error, const QStringList &remarks) {
        outcome = {complete, error, remarks};
        isFinished = true;
    });
    if (begun)
        begun(*exporter);
    while (!isFinished)
        KNDispatch::pumpMainQueue(1000);
    return outcome;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

class Exporting : public testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    /// Everything in the folder, hidden files as well.
    QStringList files() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Exporting, ChoosesFormatByExtension)
{
    const ResultRows rows = rowsOf(numberedRows(2));
    EXPECT_TRUE(exported(rows, path("a.csv")).complete);
    EXPECT_EQ(contents(path("a.csv")), QByteArray("id,name\n0,row 0\n1,row 1\n"));
    EXPECT_TRUE(exported(rows, path("a.JSON")).complete);
    EXPECT_TRUE(contents(path("a.JSON")).startsWith("[\n  {\"id\": 0"));
    EXPECT_TRUE(exported(rows, path("a.xlsx")).complete);
    EXPECT_TRUE(contents(path("a.xlsx")).startsWith("PK"));
    EXPECT_EQ(files().size(), 3);
}

TEST_F(Exporting, WritesTheRowsAsTheyAreShown)
{
    ResultRows rows = rowsOf(numberedRows(10));
    rows.order = std::make_shared<KNRowOrder>(KNRowOrder{7, 3});
    rows.ranges = {{0, 2}};
    EXPECT_TRUE(exported(rows, path("a.csv")).complete);
    EXPECT_EQ(contents(path("a.csv")), QByteArray("id,name\n7,row 7\n3,row 3\n"));
}

TEST_F(Exporting, RefusesAnUnknownFormatAndTouchesNothing)
{
    write(path("a.txt"), "before");
    const Outcome outcome = exported(rowsOf(numberedRows(2)), path("a.txt"));
    EXPECT_FALSE(outcome.complete);
    EXPECT_TRUE(outcome.error.isSet());
    EXPECT_EQ(contents(path("a.txt")), QByteArray("before"));
    EXPECT_EQ(files(), QStringList{QStringLiteral("a.txt")});
}

TEST_F(Exporting, LeavesTheOldFileAndNoOtherWhenItIsCancelled)
{
    for (const char *const name : {"a.csv", "a.json", "a.xlsx"}) {
        write(path(name), "before");
        const Outcome outcome = exported(rowsOf(numberedRows(300'000)), path(name),
                                         [](ResultExporter &exporter) { exporter.cancel(); });
        EXPECT_FALSE(outcome.complete) << name;
        EXPECT_FALSE(outcome.error.isSet()) << name;
        EXPECT_EQ(contents(path(name)), QByteArray("before")) << name;
    }
    EXPECT_EQ(files().size(), 3);
}

TEST_F(Exporting, LeavesTheOldFileAndNoOtherWhenTheDiskIsFull)
{
    for (const char *const name : {"a.csv", "a.json", "a.xlsx"}) {
        write(path(name), "before");
        const FullDisk disk(100'000);
        const Outcome outcome = exported(rowsOf(numberedRows(100'000)), path(name));
        EXPECT_FALSE(outcome.complete) << name;
        EXPECT_TRUE(outcome.error.isSet()) << name;
        EXPECT_EQ(contents(path(name)), QByteArray("before")) << name;
    }
    EXPECT_EQ(files().size(), 3);
}

TEST_F(Exporting, ReportsMissingFolder)
{
    const Outcome outcome = exported(rowsOf(numberedRows(2)), QStringLiteral("/nonexistent/a.csv"));
    EXPECT_FALSE(outcome.complete);
    EXPECT_TRUE(outcome.error.localizedDescription().contains(QStringLiteral("/nonexistent/a.csv")));
}

TEST_F(Exporting, KeepsAFilesPermissionsAndALinksTarget)
{
    write(path("a.csv"), "before");
    const QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner;
    QFile::setPermissions(path("a.csv"), permissions);
    ASSERT_TRUE(QFile::link(path("a.csv"), path("link.csv")));
    EXPECT_TRUE(exported(rowsOf(numberedRows(1)), path("link.csv")).complete);
    EXPECT_EQ(contents(path("a.csv")), QByteArray("id,name\n0,row 0\n"));
    EXPECT_EQ(QFile::permissions(path("a.csv")) & 0x7777, permissions | QFile::ReadUser | QFile::WriteUser);
    EXPECT_TRUE(QFileInfo(path("link.csv")).isSymLink());
}

TEST_F(Exporting, ReportsProgressInRows)
{
    qsizetype counted = 0;
    const auto exporter = std::make_shared<ResultExporter>(rowsOf(numberedRows(5000)), path("a.csv"));
    bool isFinished = false;
    exporter->start([&](bool, const KNError &, const QStringList &) {
        counted = exporter->rowsWritten();
        isFinished = true;
    });
    while (!isFinished)
        KNDispatch::pumpMainQueue(1000);
    EXPECT_EQ(counted, 5000);
    EXPECT_EQ(exporter->rowCount(), 5000);
}

TEST_F(Exporting, WritesCsvInTheChosenEncoding)
{
    const auto rows = rowsOf(result({QStringLiteral("a"), QStringLiteral("b")}, {{text("ä"), text("🐘")}}));
    const auto written = [&](const CsvOptions &options) {
        const auto exporter = std::make_shared<ResultExporter>(rows, path("a.csv"), options);
        bool isFinished = false;
        exporter->start([&](bool complete, const KNError &, const QStringList &) {
            EXPECT_TRUE(complete);
            isFinished = true;
        });
        while (!isFinished)
            KNDispatch::pumpMainQueue(1000);
        return contents(path("a.csv"));
    };
    const auto utf16 = CsvOptions::Encoding::Utf16;
    EXPECT_EQ(written({.hasHeader = false}), QByteArray("\xc3\xa4,\xf0\x9f\x90\x98\n"));
    EXPECT_EQ(written({.hasByteOrderMark = true, .hasHeader = false}),
              QByteArray("\xef\xbb\xbf\xc3\xa4,\xf0\x9f\x90\x98\n"));
    EXPECT_EQ(written({.encoding = utf16, .hasHeader = false}),
              QByteArray("\xe4\0,\0\x3d\xd8\x18\xdc\n\0", 10));
    EXPECT_EQ(written({.encoding = utf16, .hasByteOrderMark = true, .hasHeader = false}),
              QByteArray("\xff\xfe\xe4\0,\0\x3d\xd8\x18\xdc\n\0", 12));
}

TEST_F(Exporting, WritesUtf16AcrossPieces)
{
    constexpr int Count = 30'000; // more than one piece of the writer's buffer
    QList<KNRow> rows;
    for (int row = 0; row < Count; ++row)
        rows.append({text("ä🐘"), KNValue(1)});
    const auto exporter = std::make_shared<ResultExporter>(
        rowsOf(result({QStringLiteral("a"), QStringLiteral("b")}, rows)), path("a.csv"),
        CsvOptions{.encoding = CsvOptions::Encoding::Utf16, .hasHeader = false});
    bool isFinished = false;
    exporter->start([&](bool, const KNError &, const QStringList &) { isFinished = true; });
    while (!isFinished)
        KNDispatch::pumpMainQueue(1000);
    const QByteArray file = contents(path("a.csv"));
    const QString read =
        QString::fromUtf16(reinterpret_cast<const char16_t *>(file.constData()), file.size() / 2);
    EXPECT_EQ(read, QStringLiteral("ä🐘,1\n").repeated(Count));
}
