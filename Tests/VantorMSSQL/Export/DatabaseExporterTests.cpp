#include "Export/DatabaseExporter.h"

#include "Export/KNTargetFile.h"
#include "Foundation/KNFormat.h"
#include "Support/FakeCatalog.h"
#include "Support/FullDisk.h"
#include "Support/PrintQt.h"
#include "Support/TreeTesting.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace {

const char *const TableList =
    "SELECT SCHEMA_NAME(schema_id) + '.' + name, SCHEMA_NAME(schema_id), name AS SchemaTable FROM sys.tables "
    "ORDER BY SCHEMA_NAME(schema_id) asc, name ASC";

/// The exporter on a server that exists in the test only, whose default schema is dbo.
class Exporting : public testing::Test
{
protected:
    Exporting() { server->answer("General_FindDefaultUserSchema", {{"dbo"}}); }
    ~Exporting() override { EXPECT_TRUE(TreeTesting::settle()); }

    /// The outcome of an export; the file holds what it wrote.
    KNError write(DatabaseExporter::Form form = DatabaseExporter::Form::Exact)
    {
        KNError outcome;
        DatabaseExporter exporter(path(), *server->settings(), form);
        exporter.setIsCancelled([this] { return isCancelled; });
        exporter.exportWithProgressBlock(
            [this](const QString &text, double fraction) {
                progress.append(KNFormat("%@ %.2f", text, fraction));
                isCancelled = isCancelled || cancelsAtFirstTable;
            },
            [&](const KNError &error) {
                outcome = error;
                ++finished;
            });
        return outcome;
    }
    QString path() const { return folder.filePath(QStringLiteral("out.sql")); }
    QString content() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    void leaveOldFile() const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("old");
    }

    const std::shared_ptr<FakeCatalog::Server> server = FakeCatalog::Server::create();
    QTemporaryDir folder;
    QStringList progress;
    int finished = 0;
    bool isCancelled = false;
    bool cancelsAtFirstTable = false;
};

} // namespace

TEST_F(Exporting, ADatabaseWithoutTablesGivesAnEmptyFile)
{
    server->answer(TableList, FakeCatalog::Rows{});
    EXPECT_FALSE(write());
    EXPECT_TRUE(QFile::exists(path()));
    EXPECT_EQ(content(), QString());
    EXPECT_EQ(finished, 1);
}

TEST_F(Exporting, WritesTheCreationScriptsAndThenTheRowsOfEachTable)
{
    server->answer(TableList, {{"dbo.a", "dbo", "a"}, {"sales.a", "sales", "a"}});
    server->answer(QStringLiteral("Table_CreationQuery"),
                   [](const QString &sql, KNError *) -> FakeCatalog::Rows {
                       return sql.contains(QStringLiteral("sales"))
                                  ? FakeCatalog::Rows{{"CREATE TABLE sales.a (x int identity)"}}
                                  : FakeCatalog::Rows{{"CREATE TABLE a (x int)"}};
                   });
    server->answer("SELECT * FROM a", {QStringLiteral("x")}, {{1}, {nullptr}});
    server->answer("SELECT * FROM sales.a", {QStringLiteral("x y")}, {{"it's"}});
    EXPECT_FALSE(write());
    EXPECT_EQ(content(), QStringLiteral("CREATE TABLE a (x int)\r\n\r\n"
                                        "CREATE TABLE sales.a (x int identity)\r\n\r\n"
                                        "-- Add 2 rows for a.\r\n"
                                        "INSERT INTO a (x) VALUES \r\n(1),\r\n(NULL);\r\n\r\n"
                                        "-- Add 1 rows for sales.a.\r\n"
                                        "SET IDENTITY_INSERT sales.a ON\r\n"
                                        "INSERT INTO sales.a ([x y]) VALUES \r\n('it''s');\r\n\r\n"
                                        "SET IDENTITY_INSERT sales.a OFF\r\n\r\n"));
    EXPECT_EQ(progress, TreeTesting::list({"Generating inserts for a. Please wait. 0.00",
                                           "Generating inserts for a. Please wait. 0.50"}));
}

TEST_F(Exporting, AFailureLeavesTheOldFile)
{
    leaveOldFile();
    server->answer(TableList, {{"dbo.a", "dbo", "a"}});
    server->answer("Table_CreationQuery", {{"CREATE TABLE a (x int)"}});
    server->fail("SELECT * FROM a", KNError(QStringLiteral("SQLClient"), 229, QStringLiteral("No.")));
    EXPECT_EQ(write().code(), 229);
    EXPECT_EQ(content(), QStringLiteral("old"));
    EXPECT_EQ(folder.isValid() ? QDir(folder.path()).entryList(QDir::Files).size() : 0, 1);
}

TEST_F(Exporting, AFailedTableListLeavesTheOldFile)
{
    leaveOldFile();
    server->fail(TableList, KNError(QStringLiteral("SQLClient"), 208, QStringLiteral("No.")));
    EXPECT_EQ(write().code(), 208);
    EXPECT_EQ(content(), QStringLiteral("old"));
}

TEST_F(Exporting, ACancelledExportLeavesTheOldFileAndIsNoError)
{
    leaveOldFile();
    cancelsAtFirstTable = true;
    server->answer(TableList, {{"dbo.a", "dbo", "a"}, {"dbo.b", "dbo", "b"}});
    server->answer("Table_CreationQuery", {{"CREATE TABLE a (x int)"}});
    EXPECT_FALSE(write());
    EXPECT_EQ(content(), QStringLiteral("old"));
    EXPECT_EQ(progress.size(), 1);
    EXPECT_EQ(finished, 1);
}

TEST_F(Exporting, AFullDiskIsAnErrorAndLeavesTheOldFile)
{
    leaveOldFile();
    server->answer(TableList, {{"dbo.a", "dbo", "a"}});
    server->answer(QStringLiteral("Table_CreationQuery"),
                   [](const QString &, KNError *) -> FakeCatalog::Rows {
                       return {{QString(100000, QLatin1Char('x'))}};
                   });
    server->answer("SELECT * FROM a", {QStringLiteral("x")}, {{1}});
    KNError error;
    {
        const FullDisk full(1000);
        error = write();
    }
    EXPECT_TRUE(error);
    EXPECT_EQ(content(), QStringLiteral("old"));
}

TEST(ExportTarget, TakesTextsAtItsEndInAnEncoding)
{
    QBuffer file;
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_TRUE(DatabaseExporter::appendToFile(file, QStringLiteral("a\u00e9")));
    EXPECT_TRUE(DatabaseExporter::appendToFile(file, QStringLiteral("\u00e9"), QStringConverter::Utf16LE));
    EXPECT_EQ(file.data(), QByteArray("a\xc3\xa9\xe9\x00", 5));
    file.close();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_FALSE(DatabaseExporter::appendToFile(file, QStringLiteral("x")));
}

TEST(ExportTarget, AFullDeviceIsAnError)
{
    KNTargetFile target(QStringLiteral("/dev/full"));
    KNError error;
    ASSERT_TRUE(target.open(&error));
    target.device().write(QByteArray(1'000'000, 'x'));
    EXPECT_FALSE(target.commit(&error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("/dev/full")));
    EXPECT_FALSE(QFileInfo(QStringLiteral("/dev/full")).isFile()) << "the device was replaced";
}
