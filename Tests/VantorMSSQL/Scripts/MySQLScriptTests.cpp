#include "Export/MSSQL2MySQLExporter.h"
#include "Foundation/KNAssert.h"
#include "Scripts/MSSQLMySQLColumn.h"
#include "Scripts/MSSQLMySQLValue.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"
#include "Scripts/MSSQLScriptTablesAsMySQLQueryLoader.h"
#include "VantorMSSQL/Scripts/CatalogScript.h"

using namespace ScriptTest;

namespace {

MSSQLMySQLTranslation translation(const char *type, std::optional<qint64> size = {}, qint64 largest = -1)
{
    return MSSQLMySQLTranslation::of({utf8("the column"), utf8(type), size}, [=] {
        EXPECT_GE(largest, 0) << "asked for the largest size of " << type;
        return largest;
    });
}

QString typeOf(const char *type, std::optional<qint64> size = {})
{
    return translation(type, size).type;
}

/// A row of "ColumnsForTable".
QList<KNValue> column(const char *name, const char *type, const KNValue &size = {}, bool isNullable = true,
                      bool isPrimaryKey = false)
{
    return {text(name),
            text(type),
            size,
            KNValue(0),
            KNValue(0),
            KNValue(int(isNullable)),
            KNValue(int(isPrimaryKey)),
            KNValue(),
            KNValue(0)};
}

class MySQLScript : public CatalogScript
{
protected:
    MySQLScript()
    {
        m_server.queries = {{utf8("ColumnsForTable"), utf8("columns {SCHEMA_NAME} {TABLE_NAME}")},
                            {utf8("UserDefinedDataType_CreationQuery"), utf8("type {SCHEMA} {TYPE}")}};
    }

    QString tableScript(const char *table, bool drop, bool create, bool inserts)
    {
        return script<MSSQLScriptTableAsMySQLQueryLoader>(utf8(table), utf8("dbo"), drop, create, inserts);
    }
};

} // namespace

TEST(MySQLTranslation, CountsCharactersOfNationalTypes)
{
    EXPECT_EQ(typeOf("nvarchar", 100), utf8("nvarchar(50)"));
    EXPECT_EQ(typeOf("NCHAR", 21), utf8("NCHAR(10)"));
    EXPECT_EQ(typeOf("varchar", 100), utf8("varchar(100)"));
    EXPECT_EQ(typeOf("decimal(18,2)"), utf8("decimal(18,2)"));
}

TEST(MySQLTranslation, UsesSubstituteWidthForUnlimitedTypes)
{
    EXPECT_EQ(typeOf("nvarchar", -1), utf8("nvarchar(21844)"));
    EXPECT_EQ(typeOf("varbinary", -1), utf8("varbinary(21844)"));
    EXPECT_EQ(typeOf("varchar(max)"), utf8("varchar(21844)"));
    EXPECT_EQ(typeOf("xml", 17), utf8("nvarchar(21844)"));
}

TEST(MySQLTranslation, LeavesTheSizeOfSomeTypesOut)
{
    for (const char *type : {"int", "bigint", "smallint", "BigInt"})
        EXPECT_EQ(typeOf(type, 8), utf8(type));
    EXPECT_EQ(typeOf("float", 8), utf8("float(8)"));
}

TEST(MySQLTranslation, CastsTypesUnknownToMySQL)
{
    const auto hierarchy = translation("hierarchyid", 892);
    EXPECT_EQ(hierarchy.type, utf8("blob(892)"));
    EXPECT_EQ(hierarchy.selectExpression, utf8("CAST([the column] AS VARBINARY(892)) AS [the column]"));
    const auto guid = translation("UniqueIdentifier", 16);
    EXPECT_EQ(guid.type, utf8("binary(16)"));
    EXPECT_EQ(guid.selectExpression, utf8("CAST([the column] AS BINARY(16)) AS [the column]"));
    for (const char *type : {"datetime", "smalldatetime", "datetime2(7)", "DATETIME"}) {
        const auto date = translation(type);
        EXPECT_EQ(date.type, utf8("datetime")) << type;
        EXPECT_EQ(date.selectExpression, utf8("convert(varchar(25), [the column], 120) AS [the column]"));
    }
    EXPECT_EQ(translation("int").selectExpression, utf8("[the column]"));
    EXPECT_EQ(MSSQLMySQLTranslation::of({utf8("Id"), utf8("int")}, {}).selectExpression, utf8("Id"));
}

TEST(MySQLTranslation, MakesAnImageAsWideAsItsLargestValue)
{
    const auto image = translation("image", 16, 70000);
    EXPECT_EQ(image.type, utf8("blob(70000)"));
    EXPECT_EQ(image.notes, QStringList{utf8("Size has been calculated by determining the largest field.")});
    EXPECT_EQ(translation("image", 16, 0).type, utf8("blob(0)"));
}

TEST(MySQLValue, IsWrittenWithoutLoss)
{
    using MSSQLMySQLValue::literal;
    EXPECT_EQ(literal(KNValue()), utf8("NULL"));
    EXPECT_EQ(literal(text("null")), utf8("'null'"));
    EXPECT_EQ(literal(KNValue(true)), utf8("1"));
    EXPECT_EQ(literal(KNValue(qint64(-9223372036854775807LL - 1))), utf8("-9223372036854775808"));
    EXPECT_EQ(literal(KNValue(0.1)), utf8("0.1"));
    EXPECT_EQ(literal(text("it's a \\ \"and\" \xF0\x9F\x8E\x82")),
              utf8("'it''s a \\\\ \"and\" \xF0\x9F\x8E\x82'"));
    EXPECT_EQ(literal(KNValue(QString(QChar(0)) + utf8("x"))), utf8("'\\0x'"));
    EXPECT_EQ(literal(text("")), utf8("''"));
    EXPECT_EQ(literal(KNValue(QByteArray("\x00\xAB", 2))), utf8("x'00ab'"));
    EXPECT_EQ(literal(KNValue(QByteArray(""))), utf8("x''"));
    EXPECT_EQ(literal(KNValue(QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5, 6), Qt::UTC))),
              utf8("'2020-01-02 03:04:05.006'"));
}

TEST_F(MySQLScript, DropsCreatesAndFillsATable)
{
    answer("columns dbo Order Lines",
           {column("Id", "int", {}, false, true), column("Nr", "smallint", {}, false, true),
            column("a `name`", "nvarchar", KNValue(40)), column("Photo", "image")});
    answer("SELECT ISNULL(MAX(DATALENGTH([Photo])),0) FROM [dbo].[Order Lines]", {{KNValue(3)}});
    answer("SELECT Id,Nr,[a `name`],Photo FROM [dbo].[Order Lines]",
           {{KNValue(1), KNValue(1), text("O'Brien"), KNValue(QByteArray("abc"))},
            {KNValue(1), KNValue(2), KNValue(), KNValue()}});
    EXPECT_EQ(
        tableScript("Order Lines", true, true, true),
        utf8("DROP TABLE IF EXISTS `[Order Lines]`;\r\n\r\n"
             "CREATE TABLE `[Order Lines]` (\r\n"
             "\t`Id` int NOT NULL,\r\n"
             "\t`Nr` smallint NOT NULL,\r\n"
             "\t`a ``name``` nvarchar(20) NULL,\r\n"
             "\t`Photo` blob(3) NULL /* Size has been calculated by determining the largest field. */,\r\n"
             "\tPRIMARY KEY (`Id`, `Nr`)\r\n"
             ");\r\n"
             "\r\n-- Insert 2 entries into Order Lines\r\n"
             "INSERT INTO `[Order Lines]` VALUES (1,1,'O''Brien',x'616263');\r\n"
             "INSERT INTO `[Order Lines]` VALUES (1,2,NULL,NULL);"));
}

TEST_F(MySQLScript, HasOnlyThePartsThatAreWanted)
{
    answer("columns dbo t", {column("a", "int")});
    EXPECT_EQ(tableScript("t", true, false, false), utf8("DROP TABLE IF EXISTS `t`;\r\n\r\n"));
    EXPECT_EQ(tableScript("t", false, true, false), utf8("CREATE TABLE `t` (\r\n\t`a` int NULL);\r\n"))
        << "and no primary key where there is none";
    EXPECT_EQ(tableScript("t", false, false, true), utf8("\r\n-- Insert 0 entries into t\r\n"));
    EXPECT_EQ(tableScript("t", false, false, false), utf8(""));
    EXPECT_EQ(m_asked.count(utf8("SELECT a FROM [dbo].[t]")), 1) << "rows are read only for inserts";
}

TEST_F(MySQLScript, SpellsTypesAsMySQLDoes)
{
    answer("columns dbo t",
           {column("a", "money"), column("b", "smallmoney"), column("c", "bit"), column("d", "tinyint"),
            column("e", "float"), column("f", "real"), column("g", "text"), column("h", "ntext"),
            column("i", "timestamp"), column("j", "sql_variant"), column("k", "geography"),
            column("l", "datetimeoffset(7)"), column("m", "time(7)"), column("n", "time(3)"),
            column("o", "char", KNValue(300)), column("p", "nchar", KNValue(510)),
            column("q", "binary", KNValue(256)), column("r", "sysname")});
    const QString created = tableScript("t", false, true, false);
    EXPECT_EQ(created,
              utf8("CREATE TABLE `t` (\r\n\t`a` decimal(19,4) NULL,\r\n\t`b` decimal(10,4) NULL,\r\n"
                   "\t`c` bit(1) NULL,\r\n\t`d` tinyint unsigned NULL,\r\n\t`e` double NULL,\r\n"
                   "\t`f` float NULL,\r\n\t`g` longtext NULL,\r\n\t`h` longtext NULL,\r\n"
                   "\t`i` binary(8) NULL,\r\n\t`j` longblob NULL,\r\n\t`k` longblob NULL,\r\n"
                   "\t`l` varchar(34) NULL,\r\n\t`m` time(6) NULL,\r\n\t`n` time(3) NULL,\r\n"
                   "\t`o` varchar(300) NULL,\r\n\t`p` nchar(255) NULL,\r\n\t`q` varbinary(256) NULL,\r\n"
                   "\t`r` nvarchar(128) NULL);\r\n"));
}

TEST_F(MySQLScript, ResolvesUserDefinedTypes)
{
    const auto alias = [](const char *base, const char *size, int length) {
        QList<KNValue> row(4);
        row << KNValue(length) << text(size) << QList<KNValue>(11) << text(base);
        return QList<QList<KNValue>>{row};
    };
    answer("columns dbo t",
           {column("a", "[my ]] s].[Phone.No]"), column("b", "[dbo].[Price]"), column("c", "[dbo].[Flag]"),
            column("d", "[dbo].[Clr]"), column("e", "[dbo].[Price]")});
    answer("type my ] s Phone.No", alias("nvarchar", "20", 40));
    answer("type dbo Price", alias("decimal", "12,3", 9));
    answer("type dbo Flag", alias("bit NULL -- bit", "no size", 1));
    EXPECT_EQ(tableScript("t", false, true, false),
              utf8("CREATE TABLE `t` (\r\n\t`a` nvarchar(20) NULL,\r\n\t`b` decimal(12,3) NULL,\r\n"
                   "\t`c` bit(1) NULL,\r\n\t`d` longblob NULL,\r\n\t`e` decimal(12,3) NULL);\r\n"));
    EXPECT_EQ(m_asked.count(utf8("type dbo Price")), 1);
}

TEST_F(MySQLScript, LooksForTheWidestValueOnlyWhereItIsWritten)
{
    answer("columns dbo t", {column("a", "image")});
    tableScript("t", true, false, true);
    EXPECT_EQ(m_asked, (QStringList{utf8("columns dbo t"), utf8("SELECT a FROM [dbo].[t]")}));
}

TEST_F(MySQLScript, ReportsUnresolvedType)
{
    answer("columns dbo t", {column("a", "[dbo].[Price]")});
    fail("type dbo Price");
    EXPECT_EQ(tableScript("t", true, true, true),
              utf8("/* Failed to load table t. Error was:\r\nInvalid object name 'x'.\r\n*/\r\n"));
    EXPECT_TRUE(wasReported("mssql.queryLoader.tableAsMySQL", "type dbo Price")) << m_log.toStdString();
}

TEST_F(MySQLScript, ReportsFailures)
{
    fail("columns dbo t");
    EXPECT_EQ(tableScript("t", true, true, true),
              utf8("/* Failed to load table t. Error was:\r\nInvalid object name 'x'.\r\n*/\r\n"));
    EXPECT_TRUE(wasReported("mssql.queryLoader.tableAsMySQL", "columns dbo t"));
    answer("columns dbo u", {column("a", "int")});
    fail("SELECT a FROM [dbo].[u]");
    EXPECT_EQ(
        tableScript("u", false, false, true),
        utf8("\r\n-- Insert 0 entries into u\r\n\r\n/* Failed to load table u. Error was:\r\nInvalid object "
             "name 'x'.\r\n*/\r\n"));
}

TEST_F(MySQLScript, OfADatabaseHasEveryTable)
{
    const char *list =
        "SELECT QUOTENAME(SCHEMA_NAME(schema_id)) + '.' + QUOTENAME(name), SCHEMA_NAME(schema_id), "
        "name AS SchemaTable FROM sys.tables ORDER BY QUOTENAME(SCHEMA_NAME(schema_id)) asc, "
        "QUOTENAME(name) ASC";
    answer(list, {{text("[dbo].[t]"), text("dbo"), text("t")}, {text("[s].[u]"), text("s"), text("u")}});
    answer("columns dbo t", {column("a", "int")});
    answer("columns s u", {column("b", "int")});
    answer("SELECT b FROM [s].[u]", {{KNValue(5)}});
    EXPECT_EQ((script<MSSQLScriptTablesAsMySQLQueryLoader>()),
              utf8("DROP TABLE IF EXISTS `t`;\r\n\r\nCREATE TABLE `t` (\r\n\t`a` int NULL);\r\n"
                   "\r\n-- Insert 0 entries into t\r\n\r\n\r\n"
                   "DROP TABLE IF EXISTS `u`;\r\n\r\nCREATE TABLE `u` (\r\n\t`b` int NULL);\r\n"
                   "\r\n-- Insert 1 entries into u\r\nINSERT INTO `u` VALUES (5);"));
    fail(list);
    EXPECT_EQ((script<MSSQLScriptTablesAsMySQLQueryLoader>()), utf8("Failed to load table list"));
    EXPECT_TRUE(wasReported("mssql.queryLoader.tablesAsMySQL", list));
}

TEST(MySQLExporter, WritesBatchesOfRows)
{
    const QList<KNRow> rows{{KNValue(1), text("a")}, {KNValue(2), KNValue()}, {KNValue(3), text("c")}};
    const QStringList columns{utf8("Id"), utf8("Name")};
    EXPECT_EQ(MSSQL2MySQLExporter::exportData(rows, utf8("t"), columns, false, 2),
              utf8("-- Add 3 rows for t.\r\nINSERT INTO t (Id, Name) VALUES \r\n(1,'a'),\r\n(2,NULL);\r\n\r\n"
                   "INSERT INTO t (Id, Name) VALUES \r\n(3,'c');\r\n\r\n"));
}

TEST(MySQLExporter, LetsIdentityValuesIn)
{
    EXPECT_EQ(
        MSSQL2MySQLExporter::exportData({{KNValue(1)}}, utf8("t"), {utf8("Id")}, true, 10),
        utf8("-- Add 1 rows for t.\r\nSET IDENTITY_INSERT t ON\r\nINSERT INTO t (Id) VALUES \r\n(1);\r\n\r\n"
             "SET IDENTITY_INSERT t OFF\r\n\r\n"));
}

TEST(MySQLExporter, WritesSingleRowsOnOneLine)
{
    EXPECT_EQ(
        MSSQL2MySQLExporter::exportData({{KNValue(1)}, {KNValue(2)}}, utf8("t"), {utf8("Id")}, false, 1),
        utf8("-- Add 2 rows for t.\r\nINSERT INTO t (Id) VALUES (1);\r\nINSERT INTO t (Id) VALUES (2);\r\n"));
}

TEST(MySQLExporter, WritesCommentWithoutRows)
{
    EXPECT_EQ(MSSQL2MySQLExporter::exportData({}, utf8("t"), {utf8("Id")}, false, 10),
              utf8("-- Add 0 rows for t.\r\n"));
    EXPECT_THROW(MSSQL2MySQLExporter::exportData({}, utf8("t"), {utf8("Id")}, false, 0), KNAssertionFailure);
}

TEST_F(MySQLScript, AccessesOnlyItsTableForAnyName)
{
    const char *const name = "a]; DROP TABLE victim; --\nDROP TABLE victim; /* ` */";
    const char *const bracketed = "[a]]; DROP TABLE victim; --\nDROP TABLE victim; /* ` */]";
    answer((std::string("columns dbo ") + name).c_str(),
           {column(name, "image"), column("[x]", "int"), column("a.b", "datetime"),
            column("c]d", "uniqueidentifier")});
    answer(
        (std::string("SELECT ISNULL(MAX(DATALENGTH(") + bracketed + ")),0) FROM [dbo]." + bracketed).c_str(),
        {{KNValue(3)}});
    answer((std::string("SELECT ") + bracketed +
            ",[[x]]],convert(varchar(25), [a.b], 120) AS [a.b],CAST([c]]d] AS BINARY(16)) AS [c]]d] FROM "
            "[dbo]." +
            bracketed)
               .c_str(),
           {{KNValue(1), KNValue(2), KNValue(3), KNValue(4)}});
    const QString script = tableScript(name, true, true, true);
    // The table keeps its brackets between the backticks.
    const QString table = utf8("`[") + utf8(name).replace(utf8("`"), utf8("``")) + utf8("]`");
    EXPECT_TRUE(
        script.startsWith(utf8("DROP TABLE IF EXISTS ") + table + utf8(";\r\n\r\nCREATE TABLE ") + table))
        << script.toStdString();
    EXPECT_TRUE(script.endsWith(
        utf8("\r\n-- Insert 1 entries into a]; DROP TABLE victim; -- DROP TABLE victim; /* ` */\r\n"
             "INSERT INTO ") +
        table + utf8(" VALUES (1,2,3,4);")))
        << script.toStdString();
}

TEST_F(MySQLScript, EndsNoCommentByTheNameOfATableThatFailed)
{
    fail("columns dbo a*/ DROP TABLE victim; /*\nb");
    EXPECT_EQ(tableScript("a*/ DROP TABLE victim; /*\nb", true, true, true),
              utf8("/* Failed to load table a* / DROP TABLE victim; / * b. Error was:\r\n"
                   "Invalid object name 'x'.\r\n*/\r\n"));
}
