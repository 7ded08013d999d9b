#include "Foundation/KNDispatch.h"
#include "Scripts/MSSQLScriptAlterFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptAlterStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptAlterViewQueryLoader.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateViewQueryLoader.h"
#include "VantorMSSQL/Scripts/CatalogScript.h"

using namespace ScriptTest;

TEST_F(CatalogScript, IsDeliveredFromTheBackground)
{
    answer("table dbo Orders", {{text("CREATE TABLE ...")}});
    const auto receiver = Receiver::load(
        std::make_shared<MSSQLScriptCreateTableQueryLoader>(utf8("Orders"), utf8("dbo")), m_settings);
    EXPECT_EQ(receiver->texts(), QStringList{utf8("CREATE TABLE ...")});
    EXPECT_TRUE(receiver->cameOnAnotherThread());
}

TEST_F(CatalogScript, OfATableIsTheUnchangedLastRow)
{
    answer("table my sales Order ] Lines", {{text("first")}, {text(" last \r\n")}});
    EXPECT_EQ((script<MSSQLScriptCreateTableQueryLoader>(utf8("Order ] Lines"), utf8("my sales"))),
              utf8(" last \r\n"));
    EXPECT_EQ((script<MSSQLScriptDropAndCreateTableQueryLoader>(utf8("Order ] Lines"), utf8("my sales"))),
              utf8("DROP TABLE my sales.Order ] Lines\r\nGO\r\n\r\n last \r\n"));
}

TEST_F(CatalogScript, OfAMissingTableIsNull)
{
    EXPECT_TRUE((script<MSSQLScriptCreateTableQueryLoader>(utf8("t"), utf8("dbo"))).isNull());
    EXPECT_EQ((script<MSSQLScriptDropAndCreateTableQueryLoader>(utf8("t"), utf8("dbo"))),
              utf8("DROP TABLE dbo.t\r\nGO\r\n\r\n(null)"));
}

TEST_F(CatalogScript, OfATableThatFailsIsReportedAndNoText)
{
    fail("table dbo t");
    EXPECT_TRUE((script<MSSQLScriptCreateTableQueryLoader>(utf8("t"), utf8("dbo"))).isNull());
    EXPECT_TRUE(wasReported("mssql.queryLoader.createTableQuery", "table dbo t")) << m_log.toStdString();
    EXPECT_TRUE(m_log.contains(utf8("208"))) << m_log.toStdString();
    EXPECT_EQ((script<MSSQLScriptDropAndCreateTableQueryLoader>(utf8("t"), utf8("dbo"))),
              utf8("DROP TABLE dbo.t\r\nGO\r\n\r\n(null)"));
}

TEST_F(CatalogScript, OfAViewBeginsWithItsSettings)
{
    answer("view dbo.[my view]",
           {{KNValue(true), KNValue(false), text("\r\ncreate view [my view] AS SELECT 1\r\n ")}});
    EXPECT_EQ((script<MSSQLScriptAlterViewQueryLoader>(utf8("my view"), utf8("dbo"))),
              utf8("SET ANSI_NULLS OFF\r\nGO\r\nSET QUOTED_IDENTIFIER ON\r\nGO\r\n\r\nALTER VIEW [my view] "
                   "AS SELECT "
                   "1"));
    EXPECT_EQ((script<MSSQLScriptCreateViewQueryLoader>(utf8("my view"), utf8("dbo"))),
              utf8("SET ANSI_NULLS OFF\r\nGO\r\nSET QUOTED_IDENTIFIER ON\r\nGO\r\n\r\nCREATE VIEW [my view] "
                   "AS SELECT "
                   "1"));
    EXPECT_EQ(
        (script<MSSQLScriptDropAndCreateViewQueryLoader>(utf8("my view"), utf8("dbo"))),
        utf8("DROP VIEW dbo.[my view]\r\nGO\r\n\r\nSET ANSI_NULLS OFF\r\nGO\r\nSET QUOTED_IDENTIFIER ON\r\n"
             "GO\r\n\r\nCREATE VIEW [my view] AS SELECT 1"));
}

TEST_F(CatalogScript, OfAViewRecreatesItsIndexes)
{
    answer("view dbo.v", {{KNValue(true), KNValue(true), text("CREATE VIEW v AS SELECT 1")}});
    answer("index sys.views t.object_id = OBJECT_ID('v') v",
           {{text(" CREATE INDEX a \r\n")}, {text("CREATE INDEX b;")}, {KNValue()}});
    EXPECT_EQ(
        (script<MSSQLScriptAlterViewQueryLoader>(utf8("v"), utf8("dbo"))),
        utf8(
            "SET ANSI_NULLS ON\r\nGO\r\nSET QUOTED_IDENTIFIER ON\r\nGO\r\n\r\nALTER VIEW v AS SELECT 1\r\nGO"
            "\r\n\r\n-- For a view, we need to re-create all indexes, as they get dropped when an alter view "
            "executes.\r\nCREATE INDEX a;\r\nGO\r\n\r\nCREATE INDEX b;\r\nGO\r\n\r\n;"));
}

TEST_F(CatalogScript, OfAViewWithoutADefinitionHasItsSettingsOnly)
{
    answer("view dbo.v", {{KNValue(true), KNValue(), KNValue()}});
    EXPECT_EQ((script<MSSQLScriptAlterViewQueryLoader>(utf8("v"), utf8("dbo"))),
              utf8("SET ANSI_NULLS OFF\r\nGO\r\nSET QUOTED_IDENTIFIER ON\r\nGO\r\n\r\n"));
}

TEST_F(CatalogScript, OfAViewThatFailsIsAComment)
{
    fail("view dbo.v");
    fail("index sys.views t.object_id = OBJECT_ID('v') v");
    const QString comment =
        utf8("/* Failed to load query for view v. Error was:\r\nInvalid object name 'x'.\r\n*/");
    EXPECT_EQ((script<MSSQLScriptAlterViewQueryLoader>(utf8("v"), utf8("dbo"))),
              comment + utf8("\r\n") + comment);
    EXPECT_TRUE(wasReported("mssql.queryLoader.alterView", "view dbo.v")) << m_log.toStdString();
    EXPECT_FALSE(m_log.contains(utf8("index sys.views"))) << "indexes that fail are not reported";
}

TEST_F(CatalogScript, LooksForAnIndexWithAnApostropheInTheViewsName)
{
    answer("index sys.views t.object_id = OBJECT_ID('it''s') it's", {{text("CREATE INDEX a")}});
    EXPECT_TRUE((script<MSSQLScriptAlterViewQueryLoader>(utf8("it's"), utf8("dbo")))
                    .endsWith(utf8("executes.\r\nCREATE INDEX a;")));
}

TEST_F(CatalogScript, OfAProcedureHasItsSettingsInBatchesOfTheirOwn)
{
    answer("create sales do it shop",
           {{text("SET ANSI_NULLS ON"), text("SET QUOTED_IDENTIFIER OFF"),
             text("\r\nCREATE PROCEDURE [do it] AS SELECT 1 -- create procedure\r\n")}});
    const QString create = utf8("SET ANSI_NULLS ON\r\nGO\r\nSET QUOTED_IDENTIFIER OFF\r\nGO\r\n"
                                "CREATE PROCEDURE [do it] AS SELECT 1 -- create procedure\r\nGO");
    EXPECT_EQ((script<MSSQLScriptCreateStoredProcedureQueryLoader>(utf8("do it"), utf8("sales"))), create);
    EXPECT_EQ((script<MSSQLScriptDropAndCreateStoredProcedureQueryLoader>(utf8("do it"), utf8("sales"))),
              utf8("DROP PROCEDURE do it\r\nGO\r\n") + create);
}

TEST_F(CatalogScript, ThatAltersRewritesTheWordsInCommentsToo)
{
    const QList<QList<KNValue>> row{
        {text("SET A"), text("SET B"), text("Create Procedure p AS -- create procedure")}};
    answer("alter dbo p shop", row);
    EXPECT_EQ((script<MSSQLScriptAlterStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"))),
              utf8("SET A\r\nGO\r\nSET B\r\nGO\r\nALTER PROCEDURE p AS -- ALTER PROCEDURE\r\nGO"));
    answer("function dbo f shop", {{text("SET A"), text("SET B"), text("create FUNCTION f()")}});
    EXPECT_EQ((script<MSSQLScriptAlterFunctionQueryLoader>(utf8("f"), utf8("dbo"))),
              utf8("SET A\r\nGO\r\nSET B\r\nGO\r\nALTER FUNCTION f()\r\nGO"));
}

TEST_F(CatalogScript, OfSeveralRowsAppendsThemToOneAnother)
{
    answer("create dbo p shop", {{text("SET A"), text("SET B"), text("CREATE PROCEDURE p;1")},
                                 {text("\r\nSET A"), text("SET B"), text("CREATE PROCEDURE p;2")}});
    EXPECT_EQ(
        (script<MSSQLScriptCreateStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"))),
        utf8("SET A\r\nGO\r\nSET B\r\nGO\r\nCREATE PROCEDURE p;1\r\nGO\r\nSET A\r\nGO\r\nSET B\r\nGO\r\n"
             "CREATE PROCEDURE p;2\r\nGO"));
}

TEST_F(CatalogScript, OfAModuleWithoutRowsIsAComment)
{
    EXPECT_EQ((script<MSSQLScriptCreateStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"))),
              utf8("-- Failed to load creation query for stored procedure dbo.p in database shop."));
    EXPECT_EQ((script<MSSQLScriptAlterStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"))),
              utf8("-- Failed to load creation query for function dbo.p in database shop."));
    EXPECT_EQ((script<MSSQLScriptAlterFunctionQueryLoader>(utf8("f"), utf8("dbo"))),
              utf8("-- Failed to load creation query for function dbo.f in database shop."));
    EXPECT_EQ((script<MSSQLScriptCreateFunctionQueryLoader>(utf8("dbo.f"))),
              utf8("-- Failed to load creation query for function dbo.f in database shop."));
    EXPECT_EQ(
        (script<MSSQLScriptDropAndCreateFunctionQueryLoader>(utf8("dbo.f"))),
        utf8("DROP FUNCTION dbo.f\r\nGO\r\n-- Failed to load creation query for function dbo.f in database "
             "shop."));
}

TEST_F(CatalogScript, OfAModuleThatFailsIsReported)
{
    fail("alter dbo p shop");
    EXPECT_EQ((script<MSSQLScriptAlterStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"))),
              utf8("Failed to load query. Error was:\r\nInvalid object name 'x'."));
    EXPECT_TRUE(wasReported("mssql.queryLoader.alterStoredProcedure", "alter dbo p shop"));
    fail("function dbo f shop");
    EXPECT_EQ((script<MSSQLScriptAlterFunctionQueryLoader>(utf8("f"), utf8("dbo"))),
              utf8("-- Failed to load creation query for function dbo.f in database shop."));
    EXPECT_TRUE(wasReported("mssql.queryLoader.alterFunction", "function dbo f shop"));
    script<MSSQLScriptCreateFunctionQueryLoader>(utf8("dbo.f"));
    EXPECT_TRUE(wasReported("mssql.queryLoader.createFunction", "function dbo f shop"));
}

TEST_F(CatalogScript, OfAFunctionNeedsItsSchema)
{
    EXPECT_TRUE((script<MSSQLScriptCreateFunctionQueryLoader>(utf8("f"))).isNull());
    EXPECT_TRUE(m_log.contains(utf8("A function is scripted by its schema"))) << m_log.toStdString();
    EXPECT_TRUE(m_asked.isEmpty());
}

TEST_F(CatalogScript, OfATypeIsPutTogetherFromTheFirstRow)
{
    const auto row = [](const char *name, const KNValue &allowsNull) {
        QList<KNValue> cells(18);
        cells[0] = text(name);
        cells[1] = text("my schema");
        cells[5] = text("12,2");
        cells[10] = allowsNull;
        cells[17] = text("decimal");
        return cells;
    };
    answer("type my schema Net Price", {row("Net Price", KNValue(1)), row("other", KNValue(0))});
    EXPECT_EQ((script<MSSQLScriptCreateTypeQueryLoader>(utf8("Net Price"), utf8("my schema"), 3)),
              utf8("CREATE TYPE my schema.Net Price FROM decimal(12,2) NULL"));
    EXPECT_EQ(
        (script<MSSQLScriptDropAndCreateTypeQueryLoader>(utf8("Net Price"), utf8("my schema"), 3)),
        utf8("DROP TYPE my schema.Net Price\r\nGO\r\n\r\nCREATE TYPE my schema.Net Price FROM decimal(12,2) "
             "NULL\r\nGO"));
    answer("type s t", {row("t", KNValue(0))});
    EXPECT_TRUE(
        (script<MSSQLScriptCreateTypeQueryLoader>(utf8("t"), utf8("s"), 0)).endsWith(utf8(" NOT NULL")));
}

TEST_F(CatalogScript, OfATypeThatIsNotThereIsUnhandled)
{
    EXPECT_EQ((script<MSSQLScriptCreateTypeQueryLoader>(utf8("t"), utf8("dbo"), 0)), utf8("Unhandled"));
    EXPECT_EQ((script<MSSQLScriptDropAndCreateTypeQueryLoader>(utf8("t"), utf8("dbo"), 0)),
              utf8("DROP TYPE dbo.t\r\nGO\r\n\r\nUnhandled\r\nGO"));
    fail("type dbo t");
    EXPECT_EQ((script<MSSQLScriptCreateTypeQueryLoader>(utf8("t"), utf8("dbo"), 0)), utf8("Unhandled"));
    EXPECT_TRUE(wasReported("mssql.queryLoader.createType", "type dbo t"));
}

TEST_F(CatalogScript, ToleratesDestroyedDelegate)
{
    const auto loader = std::make_shared<MSSQLScriptCreateTableQueryLoader>(utf8("t"), utf8("dbo"));
    loader->setDelegate(std::make_shared<Receiver>());
    loader->beginLoadingQuery(m_settings);
    EXPECT_TRUE(KNDispatch::waitUntilIdle(30000));
    EXPECT_EQ(m_asked, QStringList{utf8("table dbo t")});
}
