#include "Engine/Edition.h"
#include "Engine/Server.h"
#include "Engine/Session.h"
#include "Support/RecordingSink.h"

#include <gtest/gtest.h>

using namespace SampleServer;

namespace {

RecordingSink &run(RecordingSink &sink, Edition edition, const std::string &sql,
                   const char *database = "shop")
{
    Server::Options options;
    options.edition = edition;
    Session session(std::make_shared<Server>(options), "sa", database);
    session.executeBatch(sql, sink);
    return sink;
}

/// The numbers and texts of the errors that a batch gives.
std::string errors(Edition edition, const std::string &sql)
{
    RecordingSink sink;
    std::string text;
    for (const ServerMessage &message : run(sink, edition, sql).messages())
        if (message.severity > 10)
            text += (text.empty() ? "" : "; ") + std::to_string(message.number) + ' ' + message.text;
    return text;
}

std::string scalar(Edition edition, const std::string &sql, const char *database = "shop")
{
    RecordingSink sink;
    return run(sink, edition, sql, database).scalar();
}

constexpr const char *Properties =
    "SELECT CAST(SERVERPROPERTY('ProductVersion') AS varchar(20)) + '/' + CAST(SERVERPROPERTY('Edition') AS "
    "varchar(40)) + '/' + CAST(SERVERPROPERTY('EngineEdition') AS varchar(2)) + '/' + LEFT(@@VERSION, 25)";

} // namespace

TEST(Editions, ReportTheirVersionAndEdition)
{
    EXPECT_EQ(scalar(Edition::Sql2000, Properties),
              "'8.00.194/Developer Edition/3/Microsoft SQL Server  200'");
    EXPECT_EQ(scalar(Edition::Sql2008, Properties),
              "'10.0.1600.22/Developer Edition (64-bit)/3/Microsoft SQL Server 2008'");
    EXPECT_EQ(scalar(Edition::Sql2022, Properties),
              "'16.0.1000.6/Developer Edition (64-bit)/3/Microsoft SQL Server 2022'");
    EXPECT_EQ(scalar(Edition::Azure, Properties), "'12.0.2000.8/SQL Azure/5/Microsoft SQL Azure (RTM)'");
}

TEST(Edition2000, HasSystemTablesAndNoSystemViews)
{
    EXPECT_EQ(errors(Edition::Sql2000, "SELECT name FROM sys.objects"),
              "208 Invalid object name 'sys.objects'.");
    EXPECT_EQ(scalar(Edition::Sql2000, "SELECT OBJECT_ID('sys.objects')"), "NULL");
    for (const char *table :
         {"sysobjects", "dbo.syscolumns", "sysindexes", "sysindexkeys", "sysforeignkeys", "sysreferences",
          "sysconstraints", "syscomments", "systypes", "sysusers", "sysproperties", "master..sysdatabases",
          "master.dbo.sysprocesses", "INFORMATION_SCHEMA.TABLES"})
        EXPECT_EQ(errors(Edition::Sql2000, std::string("SELECT * FROM ") + table), "") << table;
    EXPECT_EQ(errors(Edition::Sql2008, "SELECT * FROM sysproperties"),
              "208 Invalid object name 'sysproperties'.");
}

TEST(Edition2000, RefusesLaterSyntax)
{
    const std::pair<const char *, const char *> cases[] = {
        {"WITH a AS (SELECT 1 AS b) SELECT * FROM a", "156 Incorrect syntax near the keyword 'WITH'."},
        {"BEGIN TRY SELECT 1 END TRY BEGIN CATCH END CATCH", "170 Line 1: Incorrect syntax near 'TRY'."},
        {"DECLARE @a nvarchar(max)", "170 Line 1: Incorrect syntax near 'max'."},
        {"DECLARE @a int = 1", "139 Cannot assign a default value to a local variable."},
        {"SELECT name FROM sysobjects FOR XML PATH('')", "170 Line 1: Incorrect syntax near 'PATH'."},
        {"SELECT TOP (1) name FROM sysobjects", "170 Line 1: Incorrect syntax near '('."},
        {"SELECT 1 EXCEPT SELECT 2", "156 Incorrect syntax near the keyword 'EXCEPT'."},
        {"SELECT 1\nFROM sysobjects CROSS APPLY (SELECT 1 AS a) b",
         "170 Line 2: Incorrect syntax near 'APPLY'."},
        {"SELECT COUNT(*) OVER () FROM sysobjects", "156 Incorrect syntax near the keyword 'OVER'."},
        {"SELECT ROW_NUMBER() OVER (ORDER BY id) FROM sysobjects",
         "195 'ROW_NUMBER' is not a recognized function name."},
        {"SELECT SCHEMA_NAME(1)", "195 'SCHEMA_NAME' is not a recognized function name."},
        {"CREATE TABLE #t (a int, b date)",
         "2715 Column, parameter, or variable #2: Cannot find data type date."},
        {"SELECT CAST('2020-01-01' AS datetime2)", "243 Type datetime2 is not a defined system type."},
        {"INSERT INTO #t VALUES (1), (2)", "170 Line 1: Incorrect syntax near ','."}};
    for (const auto &[sql, error] : cases)
        EXPECT_EQ(errors(Edition::Sql2000, sql), error) << sql;
}

TEST(Edition2008, RefusesLaterSyntaxAndViews)
{
    const std::pair<const char *, const char *> cases[] = {
        {"SELECT 1 AS a ORDER BY a OFFSET 1 ROWS", "102 Incorrect syntax near 'OFFSET'."},
        {"BEGIN TRY SELECT 1 / 0 END TRY BEGIN CATCH ;THROW END CATCH", "102 Incorrect syntax near 'THROW'."},
        {"SELECT STRING_AGG(name, ',') FROM sys.objects",
         "195 'STRING_AGG' is not a recognized built-in function name."},
        {"SELECT IIF(1 = 1, 2, 3)", "195 'IIF' is not a recognized built-in function name."},
        {"SELECT TRY_CONVERT(int, 'x')", "195 'TRY_CONVERT' is not a recognized built-in function name."},
        {"SELECT value FROM STRING_SPLIT('a,b', ',')", "208 Invalid object name 'STRING_SPLIT'."},
        {"DROP TABLE IF EXISTS t", "156 Incorrect syntax near the keyword 'IF'."},
        {"CREATE OR ALTER VIEW v AS SELECT 1 AS a", "156 Incorrect syntax near the keyword 'OR'."},
        {"SELECT SUM(object_id) OVER (ORDER BY object_id) FROM sys.objects",
         "102 Incorrect syntax near 'order'."},
        {"SELECT temporal_type FROM sys.tables", "207 Invalid column name 'temporal_type'."},
        {"SELECT * FROM sys.sequences", "208 Invalid object name 'sys.sequences'."}};
    for (const auto &[sql, error] : cases)
        EXPECT_EQ(errors(Edition::Sql2008, sql), error) << sql;
    EXPECT_EQ(errors(Edition::Sql2008, "DECLARE @a nvarchar(max) = N'x'; WITH c AS (SELECT ROW_NUMBER() OVER "
                                       "(ORDER BY object_id) AS n FROM sys.objects) SELECT * FROM c"),
              "");
}

TEST(Editions, ListTheColumnsThatTheirSystemViewsHave)
{
    constexpr const char *lookUp =
        "SELECT COUNT(*) FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') "
        "AND name IN ('object_id', 'is_tracked_by_cdc', 'temporal_type')";
    EXPECT_EQ(scalar(Edition::Sql2008, lookUp), "2");
    EXPECT_EQ(scalar(Edition::Sql2022, lookUp), "3");
    EXPECT_EQ(scalar(Edition::Sql2022, "SELECT COUNT(*) FROM sys.columns WHERE object_id < 0"), "0");
}

TEST(EditionAzure, RefusesNamesInOtherDatabases)
{
    EXPECT_EQ(
        errors(Edition::Azure, "USE master"),
        "40508 USE statement is not supported to switch between databases. Use a new connection to connect "
        "to a different database.");
    EXPECT_EQ(errors(Edition::Azure, "USE shop"), "");
    EXPECT_EQ(
        errors(Edition::Azure, "SELECT * FROM master.sys.objects"),
        "40515 Reference to database and/or server name in 'master.sys.objects' is not supported in this "
        "version of SQL Server.");
    EXPECT_EQ(errors(Edition::Azure, "EXEC master.dbo.sp_x"),
              "40515 Reference to database and/or server name in 'master.dbo.sp_x' is not supported in this "
              "version "
              "of SQL Server.");
    EXPECT_EQ(errors(Edition::Azure, "SELECT * FROM shop.dbo.Customers; SELECT * FROM tempdb.sys.objects"),
              "");
}

TEST(EditionAzure, ListsTheCurrentDatabaseAndMasterOnly)
{
    EXPECT_EQ(scalar(Edition::Azure, "SELECT COUNT(*) FROM sys.databases"), "2");
    EXPECT_EQ(scalar(Edition::Azure, "SELECT COUNT(*) FROM sys.databases WHERE name IN ('master', 'shop')",
                     "master"),
              "2");
    EXPECT_EQ(scalar(Edition::Azure, "SELECT DB_ID('msdb')"), "NULL");
    EXPECT_EQ(errors(Edition::Azure, "SELECT * FROM sys.master_files"),
              "208 Invalid object name 'sys.master_files'.");
}
