#include "Scripts/MSSQLModuleHeader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

QString u(const char *text)
{
    return QString::fromUtf8(text);
}

QStringList noticesOf(const char *kind, const char *schema, const char *name, const char *script)
{
    return MSSQLScriptSubject{u(kind), u(schema), u(name), nullptr}.notices(u(script));
}

} // namespace

TEST(ModuleHeader, IsFoundAfterAndBetweenComments)
{
    for (const char *text :
         {"create proc dbo.p as select 1", "CREATE\r\n\tPROCEDURE\n[dbo] . \"p\" AS", "create  proc  dbo.p",
          "CREATE OR ALTER PROC dbo.p AS", "-- create view v\r\n/* create /* view */ v */CREATE proc dbo.p",
          "CREATE PROC/* here */dbo.p;1 AS"}) {
        const auto header = MSSQLModuleHeader::ofDefinition(u(text));
        ASSERT_TRUE(header) << text;
        EXPECT_EQ(header->verb, u("CREATE")) << text;
        EXPECT_EQ(header->kind, u("PROCEDURE")) << text;
        EXPECT_EQ(header->name, (QStringList{u("dbo"), u("p")})) << text;
    }
}

TEST(ModuleHeader, UnquotesNames)
{
    const auto header = MSSQLModuleHeader::ofDefinition(u("CREATE VIEW [a]]b].\"c\"\"d\" AS SELECT 1"));
    ASSERT_TRUE(header);
    EXPECT_EQ(header->schema(), u("a]b"));
    EXPECT_EQ(header->objectName(), u("c\"d"));
}

TEST(ModuleHeader, IsNoneInATextThatBeginsOtherwise)
{
    for (const char *text :
         {"", "-- encrypted", "SELECT 'CREATE VIEW v'", "CREATE", "CREATE PROC", "CREATE OR",
          "CREATE INDEX i ON t (a)", "CREATE VIEW", "CREATE VIEW a.", "'CREATE VIEW v'"})
        EXPECT_FALSE(MSSQLModuleHeader::ofDefinition(u(text))) << text;
}

TEST(ModuleHeader, IsSpelledOutForTheCallersThatLookForIt)
{
    EXPECT_EQ(MSSQLModuleHeader::withPlainHeader(u("create proc\r\ndbo.p as")),
              u("CREATE PROCEDURE\r\ndbo.p as"));
    EXPECT_EQ(MSSQLModuleHeader::withPlainHeader(u("create\t procedure p as")), u("CREATE PROCEDURE p as"));
    EXPECT_EQ(MSSQLModuleHeader::withPlainHeader(u("create view v as")), u("create view v as"));
    EXPECT_EQ(MSSQLModuleHeader::withPlainHeader(u("CREATE   FUNCTION f()")), u("CREATE FUNCTION f()"));
    EXPECT_EQ(MSSQLModuleHeader::withPlainHeader(u("/* create proc */ select 1")),
              u("/* create proc */ select 1"));
}

TEST(ModuleHeader, AltersTheStatementAndNoWordsElsewhere)
{
    EXPECT_EQ(MSSQLModuleHeader::altering(
                  u("-- create view\r\nCREATE VIEW v AS SELECT 'CREATE VIEW' AS a -- CREATE VIEW")),
              u("-- create view\r\nALTER VIEW v AS SELECT 'CREATE VIEW' AS a -- CREATE VIEW"));
}

TEST(ScriptSubject, HasNoNoticeAboutItsOwnObject)
{
    EXPECT_EQ(noticesOf("TABLE", "dbo", "Orders", "SET ANSI_NULLS ON\r\nGO\r\nCREATE TABLE [dbo].[Orders] ("),
              QStringList());
    EXPECT_EQ(noticesOf("VIEW", "dbo", "v", "DROP VIEW dbo.v\r\nGO\r\n\r\nCREATE VIEW v AS SELECT 1"),
              QStringList());
    EXPECT_EQ(
        noticesOf("PROCEDURE", "s", "p", "DROP PROCEDURE s.p\r\nGO\r\nCREATE PROC s.p AS DROP TABLE #t"),
        QStringList());
    EXPECT_EQ(noticesOf("TRIGGER", "s", "t", "-- Failed to load trigger SQL"), QStringList());
}

TEST(ScriptSubject, ReportsStatementOfAnotherKind)
{
    EXPECT_EQ(noticesOf("TABLE", "sales", "Orders", "DROP VIEW sales.Orders"),
              QStringList{u("The statement below is DROP VIEW, but the script was asked for the table "
                            "sales.Orders.")});
}

TEST(ScriptSubject, ReportsStatementWithoutSchema)
{
    EXPECT_EQ(
        noticesOf("PROCEDURE", "sales", "p", "DROP PROCEDURE p\r\nGO\r\nCREATE PROC sales.p AS"),
        QStringList{u("The statement DROP PROCEDURE names no schema: it acts on p in the default schema of "
                      "the login that runs it. The script was asked for the procedure sales.p.")});
    EXPECT_EQ(noticesOf("TRIGGER", "dbo", "tr", "DROP TRIGGER tr\r\nGO").size(), 1);
    EXPECT_EQ(noticesOf("PROCEDURE", "sales", "p", "CREATE PROCEDURE p AS").size(), 1);
    EXPECT_EQ(noticesOf("PROCEDURE", "dbo", "p", "CREATE PROCEDURE p AS"), QStringList());
}

TEST(ScriptSubject, ReportsUnquotedNameOfAnotherObject)
{
    const QStringList notices =
        noticesOf("TABLE", "my sales", "Order Lines",
                  "DROP TABLE my sales.Order Lines\r\nGO\r\n\r\nCREATE TABLE [my sales].[Order Lines] (");
    ASSERT_EQ(notices.size(), 1);
    EXPECT_TRUE(notices.first().contains(u("names my, but"))) << notices.first().toStdString();
}
