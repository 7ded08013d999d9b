#include "Support/TestText.h"
#include "Vantor/Program.h"
#include "VantorMSSQL/Scripts/MariaDb.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// vantor-cli export of the sample databases.
class ExportCommand : public testing::Test
{
protected:
    static Outcome runIn(const char *database, const QStringList &arguments)
    {
        return Program(QStringList{arguments.first(), q("--server"),
                                   q("127.0.0.1,%1").arg(SampleServerFixture::shared().port()), q("--user"),
                                   q("sa"), q("--database"), q(database)} +
                       arguments.mid(1))
            .wait();
    }
    static Outcome exported(const char *database, std::initializer_list<const char *> arguments)
    {
        QStringList words{q("export")};
        for (const char *const argument : arguments)
            words.append(q(argument));
        return runIn(database, words);
    }
    static QByteArray query(const char *database, const char *sql)
    {
        const Outcome outcome = runIn(database, {q("query"), q("--format"), q("csv"), q(sql)});
        EXPECT_EQ(outcome.status, 0) << sql << "\n" << outcome.errors.toStdString();
        return outcome.output;
    }
    QString write(const QByteArray &content) const
    {
        QFile file(folder.filePath(q("script.sql")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }
    static QByteArray content(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(ExportCommand, ComesBackAsTheSameScriptAndTheSameRows)
{
    const Outcome first = exported("library", {"--data"});
    ASSERT_EQ(first.status, 0) << first.errors.toStdString();
    EXPECT_TRUE(first.output.contains("INSERT INTO [dbo].[Books] ("));
    query("master", "IF DB_ID('copied') IS NOT NULL DROP DATABASE copied\nGO\nCREATE DATABASE copied");
    const Outcome loaded = runIn("copied", {q("query"), q("--file"), write(first.output)});
    EXPECT_EQ(loaded.status, 0) << loaded.errors.toStdString();
    const Outcome second = exported("copied", {"--data"});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.output, first.output);
    for (const char *const rows :
         {"SELECT * FROM dbo.Authors ORDER BY 1", "SELECT * FROM dbo.Books ORDER BY 1",
          "SELECT * FROM dbo.Loans ORDER BY 1"})
        EXPECT_EQ(query("copied", rows), query("library", rows)) << rows;
}

TEST_F(ExportCommand, ComesBackWithExtendedPropertiesAndTableTypes)
{
    const Outcome first = exported("shop", {"--tables", "dbo.Customers"});
    ASSERT_EQ(first.status, 0) << first.errors.toStdString();
    EXPECT_TRUE(first.output.contains(
        "EXEC sp_addextendedproperty N'MS_Description', N'Two letters', N'SCHEMA', N'dbo', N'TABLE', "
        "N'Customers', N'COLUMN', N'Country'\r\nGO\r\n"))
        << first.output.toStdString();
    EXPECT_FALSE(exported("shop", {"--tables", "dbo.Customers", "--no-extended-properties"})
                     .output.contains("MS_Description"));
    query("master", "IF DB_ID('copied') IS NOT NULL DROP DATABASE copied\nGO\nCREATE DATABASE copied");
    const Outcome loaded = runIn("copied", {q("query"), q("--file"), write(first.output)});
    EXPECT_EQ(loaded.status, 0) << loaded.errors.toStdString();
    EXPECT_EQ(exported("copied", {}).output, first.output);
    const QByteArray whole = exported("shop", {}).output;
    const qsizetype type =
        whole.indexOf("CREATE TYPE [sales].[LineList] AS TABLE (\r\n\t[LineNumber] int NOT NULL,");
    EXPECT_TRUE(type > 0 && type < whole.indexOf("CREATE TABLE"));
}

TEST_F(ExportCommand, KeepsBackslashesBeforeLineEnds)
{
    query("master", "IF DB_ID('copied') IS NOT NULL DROP DATABASE copied\nGO\nCREATE DATABASE copied\nGO\n"
                    "IF DB_ID('slashed') IS NOT NULL DROP DATABASE slashed\nGO\nCREATE DATABASE slashed");
    query("slashed", "CREATE TABLE dbo.t (v nvarchar(20) NOT NULL)\nGO\n"
                     "DECLARE @s nvarchar(9), @r nvarchar(9)\n"
                     "SET @s = N'a\\' + NCHAR(10) + N'b'\nSET @r = N'a\\' + NCHAR(13) + NCHAR(10)\n"
                     "INSERT INTO dbo.t VALUES (@s), (@r)\n"
                     "EXEC sp_addextendedproperty N'LF', @s, N'SCHEMA', N'dbo', N'TABLE', N't'\n"
                     "EXEC sp_addextendedproperty N'CRLF', @r, N'SCHEMA', N'dbo', N'TABLE', N't'\nGO\n"
                     "CREATE VIEW dbo.v AS -- C:\\\nSELECT v FROM dbo.t");
    const QByteArray script = exported("slashed", {"--data", "--if-not-exists"}).output;
    const Outcome loaded = runIn("copied", {q("query"), q("--file"), write(script)});
    EXPECT_EQ(loaded.status, 0) << loaded.errors.toStdString();
    const QByteArray rows = query("copied", "SELECT CONVERT(varbinary(20), v) FROM dbo.v");
    EXPECT_TRUE(rows.contains("61005C000A006200")) << rows.toStdString();
    EXPECT_TRUE(rows.contains("61005C000D000A00")) << rows.toStdString();
    const QByteArray properties =
        query("copied", "SELECT CONVERT(varbinary(20), CONVERT(nvarchar(9), value)) "
                        "FROM sys.extended_properties");
    EXPECT_TRUE(properties.contains("61005C000A006200")) << properties.toStdString();
    EXPECT_TRUE(properties.contains("61005C000D000A00")) << properties.toStdString();
}

TEST_F(ExportCommand, RunsTwiceWithKeysAndChecksThatTheServerNamed)
{
    query("master", "IF DB_ID('copied') IS NOT NULL DROP DATABASE copied\nGO\nCREATE DATABASE copied\nGO\n"
                    "IF DB_ID('unnamed') IS NOT NULL DROP DATABASE unnamed\nGO\nCREATE DATABASE unnamed");
    query("unnamed",
          "CREATE TABLE dbo.a (id int NOT NULL PRIMARY KEY, other int NULL REFERENCES dbo.a (id))\nGO\n"
          "CREATE TABLE dbo.b (id int NOT NULL CHECK (id > 0), x int NULL REFERENCES dbo.a (id), y int "
          "NULL REFERENCES dbo.a (id))");
    const QByteArray plain = exported("unnamed", {}).output;
    for (const char *const option : {"--if-not-exists", "--drop"}) {
        const QByteArray script = exported("unnamed", {option}).output;
        for (int run = 0; run < 2; ++run) {
            const Outcome loaded = runIn("copied", {q("query"), q("--file"), write(script)});
            EXPECT_EQ(loaded.status, 0) << option << loaded.errors.toStdString();
            EXPECT_EQ(exported("copied", {}).output, plain) << option << run;
        }
    }
}

TEST_F(ExportCommand, ComesBackWithViewsAndProceduresThatNameEachOther)
{
    query("master", "IF DB_ID('copied') IS NOT NULL DROP DATABASE copied\nGO\nCREATE DATABASE copied\nGO\n"
                    "IF DB_ID('cycles') IS NOT NULL DROP DATABASE cycles\nGO\nCREATE DATABASE cycles");
    query("cycles",
          "CREATE VIEW dbo.v1 AS SELECT 1 AS a\nGO\nCREATE VIEW dbo.v2 AS SELECT a FROM dbo.v1\nGO\n"
          "ALTER VIEW dbo.v1 AS SELECT a FROM dbo.v2\nGO\nCREATE PROCEDURE dbo.p1 AS RETURN 1\nGO\n"
          "CREATE PROCEDURE dbo.p2 AS EXEC dbo.p1\nGO\nALTER PROCEDURE dbo.p1 AS EXEC dbo.p2\nGO\n"
          "CREATE FUNCTION dbo.f1 (@n int, @text nvarchar(10)) RETURNS TABLE AS RETURN SELECT @n AS n, @text "
          "AS "
          "text\nGO\nCREATE VIEW dbo.v3 AS SELECT n, text FROM dbo.f1(1, N'a')\nGO\n"
          "ALTER FUNCTION dbo.f1 (@n int, @text nvarchar(10)) RETURNS TABLE AS RETURN SELECT n, text FROM "
          "dbo.v3");
    const QByteArray script = exported("cycles", {}).output;
    EXPECT_EQ(script.count("A stub: the definition follows."), 3);
    EXPECT_TRUE(script.contains("CREATE FUNCTION [dbo].[f1] (@n int = NULL, @text nvarchar(10) = NULL)\r\n"))
        << script.toStdString();
    EXPECT_TRUE(script.contains("ALTER VIEW dbo.v1 AS SELECT a FROM dbo.v2")) << script.toStdString();
    const Outcome loaded = runIn("copied", {q("query"), q("--file"), write(script)});
    EXPECT_EQ(loaded.status, 0) << loaded.errors.toStdString();
    EXPECT_EQ(exported("copied", {}).output, script);
}

TEST_F(ExportCommand, InsertsRowsOnlyInTheOrderOfForeignKeys)
{
    const QByteArray rows = exported("library", {"--data-only"}).output;
    const qsizetype authors = rows.indexOf("INSERT INTO [dbo].[Authors]");
    const qsizetype books = rows.indexOf("INSERT INTO [dbo].[Books]");
    const qsizetype loans = rows.indexOf("INSERT INTO [dbo].[Loans]");
    EXPECT_TRUE(authors >= 0 && authors < books && books < loans);
    EXPECT_FALSE(rows.contains("CREATE"));
    query("master", "IF DB_ID('copied') IS NOT NULL DROP DATABASE copied\nGO\nCREATE DATABASE copied");
    for (const QByteArray &script : {exported("library", {}).output, rows}) {
        const Outcome loaded = runIn("copied", {q("query"), q("--file"), write(script)});
        EXPECT_EQ(loaded.status, 0) << loaded.errors.toStdString();
    }
    EXPECT_EQ(exported("copied", {"--data-only"}).output, rows);
}

TEST_F(ExportCommand, WritesForeignKeysBehindAllRows)
{
    const QByteArray script = exported("shop", {"--data"}).output;
    const qsizetype lastRow = script.lastIndexOf("INSERT INTO [");
    const qsizetype firstKey = script.indexOf("FOREIGN KEY (");
    ASSERT_GT(lastRow, 0);
    ASSERT_GT(firstKey, 0);
    EXPECT_LT(lastRow, firstKey);
}

TEST_F(ExportCommand, WritesOnlyTheTablesThatAreNamed)
{
    const Outcome outcome = exported("library", {"--tables", "books,dbo.Authors"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.contains("CREATE TABLE [dbo].[Books] ("));
    EXPECT_TRUE(outcome.output.contains("CREATE TABLE [dbo].[Authors] ("));
    EXPECT_FALSE(outcome.output.contains("CREATE TABLE [dbo].[Loans] ("));
    EXPECT_FALSE(outcome.output.contains("INSERT INTO"));
    const Outcome missing = exported("library", {"--tables", "nothing"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_TRUE(missing.errors.contains("There is no table \"nothing\"."));
    EXPECT_TRUE(missing.output.isEmpty());
}

TEST_F(ExportCommand, WritesTheTablesForMySQL)
{
    const QByteArray script = exported("library", {"--data", "--mysql"}).output;
    EXPECT_TRUE(script.contains("CREATE TABLE `Books` ("));
    EXPECT_TRUE(script.contains("INSERT INTO `Books` VALUES ("));
}

TEST_F(ExportCommand, WritesRowsThatMariaDbReadsAlike)
{
    if (!MariaDb::isInstalled())
        GTEST_SKIP() << "MariaDB is not installed: scripts/setup installs it";
    query("master", "IF DB_ID('moving') IS NOT NULL DROP DATABASE moving\nGO\nCREATE DATABASE moving");
    const Outcome copied =
        runIn("moving", {q("query"), q("--file"), write(exported("library", {"--data"}).output)});
    ASSERT_EQ(copied.status, 0) << copied.errors.toStdString();
    query("moving",
          "CREATE TABLE dbo.Hard (Id int IDENTITY PRIMARY KEY, T nvarchar(60) NULL, B varbinary(8) NULL, "
          "M money NULL, F float NULL)\nGO\nINSERT INTO dbo.Hard (T, B, M, F) VALUES "
          "(N'it''s \\ \"100%\"; Кофе', 0x00275CFF, -922337203685477.5808, 0.1), (N'', 0x, 0, 0), "
          "(NULL, NULL, NULL, NULL)");
    const QString file = folder.filePath(q("moving.sql"));
    ASSERT_EQ(exported("moving", {"--data", "--mysql", "--to", qPrintable(file)}).status, 0);

    MariaDb mariaDb;
    QString error;
    mariaDb.run("CREATE DATABASE target", q("mysql"), &error);
    mariaDb.run(content(file), q("target"), &error);
    ASSERT_TRUE(error.isNull()) << error.toStdString();
    const auto rowsIn = [&](const char *sql) {
        QByteArray text;
        for (const QList<QByteArray> &row : mariaDb.run(sql, q("target"), &error))
            text += row.join(',') + '\n';
        EXPECT_TRUE(error.isNull()) << error.toStdString();
        return text;
    };
    EXPECT_EQ(rowsIn("SELECT Id, HEX(CONVERT(T USING utf8mb4)), HEX(B), M, F FROM Hard ORDER BY Id"),
              "1," + QByteArray("it's \\ \"100%\"; Кофе").toHex().toUpper() +
                  ",00275CFF,-922337203685477.5808,0.1\n2,,,0.0000,0\n3,NULL,NULL,NULL,NULL\n");
    const std::pair<const char *, const char *> tables[] = {
        {"SELECT AuthorId, Name, ISNULL(CONVERT(varchar(9), Born), 'NULL') FROM dbo.Authors ORDER BY 1",
         "SELECT AuthorId, Name, Born FROM Authors ORDER BY 1"},
        {"SELECT Isbn, Title, AuthorId, ISNULL(CONVERT(varchar(9), Pages), 'NULL') FROM dbo.Books ORDER BY 1",
         "SELECT Isbn, Title, AuthorId, Pages FROM Books ORDER BY 1"},
        {"SELECT LoanId, Isbn, Reader, CONVERT(varchar(19), LentAt, 120), ISNULL(CONVERT(varchar(19), "
         "ReturnedAt, "
         "120), 'NULL') FROM dbo.Loans ORDER BY 1",
         "SELECT LoanId, Isbn, Reader, LentAt, ReturnedAt FROM Loans ORDER BY 1"},
    };
    for (const auto &[ofServer, ofMariaDb] : tables) {
        const QByteArray wanted = query("moving", ofServer);
        EXPECT_GT(wanted.count('\n'), 4);
        EXPECT_EQ(rowsIn(ofMariaDb), wanted.mid(wanted.indexOf('\n') + 1)) << ofServer;
    }
}

TEST_F(ExportCommand, ReplacesAFileOrFillsAFolder)
{
    const QString file = write("old");
    EXPECT_EQ(exported("library", {"--to", qPrintable(file)}).status, 0);
    EXPECT_TRUE(content(file).contains("CREATE TABLE [dbo].[Books] ("));
    const QString target = folder.filePath(q("scripts/"));
    EXPECT_EQ(exported("library", {"--to", qPrintable(target)}).status, 0);
    EXPECT_TRUE(content(target + q("dbo.Books.sql")).contains("CREATE TABLE [dbo].[Books] ("));
    EXPECT_TRUE(content(target + q("_run_all.sql")).contains(":r \"dbo.Books.sql\"\r\n"));
}

TEST_F(ExportCommand, CompressesByTheNameOfTheTarget)
{
    const QByteArray plain = exported("library", {"--data"}).output;
    const QString file = folder.filePath(q("library.sql.gz"));
    EXPECT_EQ(exported("library", {"--data", "--to", qPrintable(file)}).status, 0);
    QProcess gzip;
    gzip.start(q("gzip"), {q("-dc"), file});
    ASSERT_TRUE(gzip.waitForFinished());
    EXPECT_EQ(gzip.readAllStandardOutput(), plain);
    const QString archive = folder.filePath(q("library.zip"));
    EXPECT_EQ(exported("library", {"--data", "--to", qPrintable(archive)}).status, 0);
    EXPECT_TRUE(content(archive).startsWith("PK\x03\x04"));
    EXPECT_TRUE(content(archive).contains("_run_all.sql"));
}

TEST_F(ExportCommand, LeavesOutPartsOfTheStructure)
{
    const QByteArray whole = exported("shop", {}).output;
    ASSERT_TRUE(whole.contains("FOREIGN KEY (") && whole.contains("INDEX [") &&
                whole.contains("CREATE TRIGGER"));
    EXPECT_FALSE(exported("shop", {"--no-constraints"}).output.contains("FOREIGN KEY ("));
    EXPECT_FALSE(exported("shop", {"--no-indexes"}).output.contains("\nCREATE NONCLUSTERED INDEX ["));
    EXPECT_FALSE(exported("shop", {"--no-triggers"}).output.contains("CREATE TRIGGER"));
}

TEST_F(ExportCommand, WritesRowsAsCsvFilesWithScriptsThatLoadThem)
{
    query("master", "IF DB_ID('rows1') IS NOT NULL DROP DATABASE rows1\nGO\nCREATE DATABASE rows1");
    query("rows1",
          "CREATE TABLE dbo.t (id int IDENTITY PRIMARY KEY, name nvarchar(20) NULL, bytes varbinary(4) "
          "NULL)\nGO\nINSERT INTO dbo.t (name, bytes) VALUES (N'', 0x0AFF), (NULL, NULL), (N'\\N', NULL), "
          "(N'a\"b,c', NULL)");
    const QString target = folder.filePath(q("csv/"));
    const Outcome outcome = exported("rows1", {"--data", "--csv", "--to", qPrintable(target)});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_EQ(content(target + q("dbo.t.csv")),
              "1,\"\",0x0AFF\n2,\\N,\\N\n3,\\\\N,\\N\n4,\"a\"\"b,c\",\\N\n");
    EXPECT_EQ(content(target + q("_run_all.sql")), ":r \"dbo.t.sql\"\r\n:r \"dbo.t.Load.sql\"\r\n");
    QByteArray loading = content(target + q("dbo.t.Load.sql"));
    EXPECT_TRUE(loading.startsWith("-- Loads dbo.t.csv into [dbo].[t] with sqlcmd -v DataFolder="));
    EXPECT_FALSE(loading.left(loading.indexOf("CREATE TABLE")).contains("$("));
    EXPECT_TRUE(loading.contains(
        "CREATE TABLE #Rows (\r\n\t[id] nvarchar(max) NULL,\r\n\t[name] nvarchar(max) NULL,\r\n\t[bytes] "
        "nvarchar(max) NULL\r\n)\r\nGO\r\nBULK INSERT #Rows FROM N'$(DataFolder)dbo.t.csv' WITH (FORMAT = "
        "'CSV', "
        "CODEPAGE = '65001', ROWTERMINATOR = '0x0a', MAXERRORS = 0)\r\nGO\r\nSET DATEFORMAT ymd\r\nSET "
        "IDENTITY_INSERT "
        "[dbo].[t] ON\r\nINSERT INTO [dbo].[t] ([id], [name], [bytes])\r\nSELECT\r\n"))
        << loading.toStdString();
    // The sample server has no BULK INSERT: the rest of the script is tried with rows as it would load them.
    const qsizetype bulk = loading.indexOf("BULK INSERT #Rows");
    loading.replace(
        bulk, loading.indexOf("SET DATEFORMAT") - bulk,
        "INSERT INTO #Rows VALUES ('1', NULL, '0x0AFF'), ('2', '\\N', '\\N'), ('3', '\\\\N', '\\N'), "
        "('4', 'a\"b,c', '\\N')\r\nGO\r\n");
    const QByteArray before = query("rows1", "SELECT * FROM dbo.t ORDER BY id");
    query("rows1", "DELETE FROM dbo.t");
    const Outcome loaded = runIn("rows1", {q("query"), q("--file"), write(loading)});
    EXPECT_EQ(loaded.status, 0) << loaded.errors.toStdString();
    EXPECT_EQ(query("rows1", "SELECT * FROM dbo.t ORDER BY id"), before);
    EXPECT_EQ(exported("rows1", {"--data", "--csv"}).status, 2);
    EXPECT_EQ(exported("rows1", {"--csv", "--to", qPrintable(target)}).status, 2);
}

TEST_F(ExportCommand, KeepsBlanksOfXmlAndNamesTypesThatAreLost)
{
    query("master", "IF DB_ID('copied') IS NOT NULL DROP DATABASE copied\nGO\nCREATE DATABASE copied\nGO\n"
                    "IF DB_ID('typed') IS NOT NULL DROP DATABASE typed\nGO\nCREATE DATABASE typed");
    query("typed",
          "CREATE TABLE dbo.t (id int PRIMARY KEY, x xml NULL, v sql_variant NULL, m money NULL)\nGO\n"
          "INSERT INTO dbo.t VALUES (1, CONVERT(xml, N'<a> <b/> </a>', 1), 5, 1.5), (2, NULL, NULL, NULL)");
    const char *const lost =
        "-- Not scripted: the types of the values of [v], an sql_variant column: they become text.\r\n";
    const QByteArray script = exported("typed", {"--data"}).output;
    EXPECT_TRUE(script.contains(QByteArray(lost) + "INSERT INTO [dbo].[t] ([id], [x], [v], [m]) VALUES\r\n"
                                                   "(1, CONVERT(xml, '<a> <b/> </a>', 1), '5', 1.5000),\r\n"
                                                   "(2, CONVERT(xml, NULL, 1), NULL, NULL);\r\n"))
        << script.toStdString();
    const Outcome loaded = runIn("copied", {q("query"), q("--file"), write(script)});
    EXPECT_EQ(loaded.status, 0) << loaded.errors.toStdString();
    EXPECT_EQ(query("copied", "SELECT id, x, m FROM dbo.t"), query("typed", "SELECT id, x, m FROM dbo.t"));
    const QString target = folder.filePath(q("csv/"));
    EXPECT_EQ(exported("typed", {"--data", "--csv", "--to", qPrintable(target)}).status, 0);
    const QByteArray loading = content(target + q("dbo.t.Load.sql"));
    EXPECT_TRUE(loading.contains(QByteArray(lost) + "CREATE TABLE #Rows")) << loading.toStdString();
    EXPECT_TRUE(loading.contains("\tCONVERT(xml, CASE WHEN [x] = N'\\N' THEN NULL"));
    EXPECT_TRUE(loading.contains("\tCONVERT(money, CASE WHEN [m] = N'\\N' THEN NULL"));
}

TEST_F(ExportCommand, KeepsDigitsAndBytesOfVariants)
{
    query("master", "IF DB_ID('variants') IS NOT NULL DROP DATABASE variants\nGO\nCREATE DATABASE variants");
    query("variants", "CREATE TABLE dbo.t (id int PRIMARY KEY, v sql_variant NULL)\nGO\n"
                      "INSERT INTO dbo.t VALUES (1, CONVERT(datetime, '2020-01-02T03:04:05.997'))\n"
                      "INSERT INTO dbo.t VALUES (2, CONVERT(money, 1.2345))\n"
                      "INSERT INTO dbo.t VALUES (3, CONVERT(float, 0.1234567890123))\n"
                      "INSERT INTO dbo.t VALUES (4, 0x0AFF)\n"
                      "INSERT INTO dbo.t VALUES (5, CONVERT(varchar(8000), REPLICATE('x', 5000)))\n"
                      "INSERT INTO dbo.t VALUES (6, N'Zo\xc3\xab')");
    const QByteArray script = exported("variants", {"--data-only"}).output;
    for (const QByteArray row : {"(1, '2020-01-02 03:04:05.997')", "(2, '1.2345')",
                                 "(3, '1.234567890123000e-001')", "(4, '0x0AFF')", "(6, N'Zo\xc3\xab')"})
        EXPECT_TRUE(script.contains(row)) << row.toStdString() << script.left(2000).toStdString();
    EXPECT_TRUE(script.contains("(5, '" + QByteArray(5000, 'x') + "')"));
}

TEST_F(ExportCommand, WritesUserTypesLikeTheirSystemTypes)
{
    query("master", "IF DB_ID('aliases') IS NOT NULL DROP DATABASE aliases\nGO\nCREATE DATABASE aliases");
    query("aliases",
          "CREATE TYPE dbo.Bytes FROM varbinary(4)\nGO\nCREATE TYPE dbo.Price FROM money\nGO\n"
          "CREATE TYPE dbo.Anything FROM sql_variant\nGO\nCREATE TYPE dbo.geometry_code FROM int\nGO\n"
          "CREATE TABLE dbo.t (id int PRIMARY KEY, b dbo.Bytes NULL, p dbo.Price NULL, v dbo.Anything NULL, "
          "g dbo.geometry_code NULL)\nGO\nINSERT INTO dbo.t VALUES (1, 0x0AFF, 1.5, N'text', 7)");
    const QByteArray script = exported("aliases", {"--data-only"}).output;
    EXPECT_TRUE(script.contains("-- Not scripted: the types of the values of [v], an sql_variant column"));
    EXPECT_TRUE(script.contains("(1, 0x0AFF, 1.5000, 'text', 7);")) << script.toStdString();
    const QString target = folder.filePath(q("csv/"));
    EXPECT_EQ(exported("aliases", {"--data", "--csv", "--to", qPrintable(target)}).status, 0);
    const QByteArray loading = content(target + q("dbo.t.Load.sql"));
    for (const char *const part :
         {"\tCONVERT(varbinary(max), CASE WHEN [b] = N'\\N'", "\tCONVERT(money, CASE WHEN [p] = N'\\N'",
          "\tCASE WHEN LEN([v]) > 4000 THEN CONVERT(sql_variant, CONVERT(varchar(8000), CASE WHEN",
          "\tCASE WHEN [g] = N'\\N'"})
        EXPECT_TRUE(loading.contains(part)) << part << loading.toStdString();
}

TEST_F(ExportCommand, AFullDeviceIsAnError)
{
    const Outcome outcome = exported("library", {"--data", "--to", "/dev/full"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errors.contains("/dev/full")) << outcome.errors.toStdString();
}

TEST_F(ExportCommand, RefusesOptionsThatContradict)
{
    EXPECT_EQ(exported("library", {"--drop", "--data-only"}).status, 2);
    const Outcome forMySQL = exported("library", {"--mysql", "--if-not-exists"});
    EXPECT_EQ(forMySQL.status, 2);
    EXPECT_TRUE(forMySQL.errors.contains("--if-not-exists has no effect here. For MySQL, only tables"))
        << forMySQL.errors.toStdString();
    EXPECT_EQ(exported("library", {"a", "b"}).status, 2);
    EXPECT_EQ(exported("library", {"--help"}).status, 0);
}

TEST_F(ExportCommand, RunsTwiceWithDropsOrConditions)
{
    query("master", "IF DB_ID('copied') IS NOT NULL DROP DATABASE copied\nGO\nCREATE DATABASE copied");
    for (const char *const option : {"--if-not-exists", "--drop"}) {
        const QByteArray script = exported("library", {option}).output;
        for (int run = 0; run < 2; ++run) {
            const Outcome loaded = runIn("copied", {q("query"), q("--file"), write(script)});
            EXPECT_EQ(loaded.status, 0) << option << loaded.errors.toStdString();
        }
    }
}
