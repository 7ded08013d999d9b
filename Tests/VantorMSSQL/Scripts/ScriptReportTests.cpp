#include "Foundation/KNUserDefaults.h"
#include "Scripts/MSSQLScriptAlterFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptAlterStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptAlterViewQueryLoader.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "VantorMSSQL/Scripts/CatalogScript.h"

using namespace ScriptTest;

namespace {

/// What generators report beside their texts.
class ScriptReport : public CatalogScript
{
protected:
    ~ScriptReport() override { KNUserDefaults::standardUserDefaults()->removeObject(CorrectedKey); }

    template <typename Loader, typename... Arguments>
    void load(const Arguments &...arguments)
    {
        const auto loader = std::make_shared<Loader>(arguments...);
        m_text = textOf(loader, m_settings);
        m_report = loader->report();
    }
    QString guarded() const { return m_report.guardedText(m_text); }

    const QString CorrectedKey = utf8("MSSQLUseCorrectedStatements");
    QString m_text;
    KNQueryReport m_report;
};

} // namespace

TEST_F(ScriptReport, HasNoFailureOfAWholeScript)
{
    answer("table dbo t", {{text("CREATE TABLE dbo.t (a int)")}});
    load<MSSQLScriptDropAndCreateTableQueryLoader>(utf8("t"), utf8("dbo"));
    EXPECT_FALSE(m_report.failure);
    EXPECT_EQ(guarded(), utf8("DROP TABLE dbo.t\r\nGO\r\n\r\nCREATE TABLE dbo.t (a int)"));
}

TEST_F(ScriptReport, NeverLetsATableBeDroppedWithoutItsCreatePart)
{
    fail("table dbo t");
    load<MSSQLScriptDropAndCreateTableQueryLoader>(utf8("t"), utf8("dbo"));
    EXPECT_EQ(m_text, utf8("DROP TABLE dbo.t\r\nGO\r\n\r\n(null)"));
    EXPECT_EQ(m_report.failure.code(), 208);
    EXPECT_EQ(m_report.failure.domain(), utf8("mssql.queryLoader.createTableQuery"));
    EXPECT_EQ(guarded(), utf8("-- This script is incomplete: Invalid object name 'x'.\r\n"
                              "-- What must not run without the missing part is commented out.\r\n"
                              "-- DROP TABLE dbo.t\r\n-- GO\r\n-- \r\n-- (null)\r\n"));
    load<MSSQLScriptDropAndCreateTableQueryLoader>(utf8("gone"), utf8("dbo"));
    EXPECT_TRUE(m_report.failure);
    EXPECT_EQ(m_report.unsafeLength, m_text.size());
}

TEST_F(ScriptReport, ListsMissingPartsBeforeDrop)
{
    answer("table dbo t", {{text("-- Not part of this script: The full-text index of the table.\r\n"
                                 "SET ANSI_NULLS ON\r\nGO\r\nCREATE TABLE dbo.t (a int)")}});
    load<MSSQLScriptDropAndCreateTableQueryLoader>(utf8("t"), utf8("dbo"));
    EXPECT_TRUE(guarded().startsWith(
        utf8("-- The table that this script makes is not the one that it drops:\r\n"
             "-- Not part of this script: The full-text index of the table.\r\nDROP TABLE dbo.t\r\n")))
        << guarded().toStdString();
}

TEST_F(ScriptReport, HasTheFailureOfEveryRefusedQuery)
{
    for (const char *query : {"table dbo x", "view dbo.x", "index sys.views t.object_id = OBJECT_ID('x') x",
                              "create dbo x shop", "alter dbo x shop", "function dbo x shop", "type dbo x"})
        fail(query);
    const QString name = utf8("x");
    const QString schema = utf8("dbo");
    const auto expectFailure = [this](const char *what) {
        EXPECT_EQ(m_report.failure.code(), 208) << what;
        EXPECT_EQ(m_report.failure.localizedDescription(), utf8("Invalid object name 'x'.")) << what;
    };
    load<MSSQLScriptCreateTableQueryLoader>(name, schema);
    EXPECT_TRUE(m_text.isNull());
    expectFailure("CREATE TABLE");
    load<MSSQLScriptCreateViewQueryLoader>(name, schema);
    expectFailure("CREATE VIEW");
    load<MSSQLScriptCreateStoredProcedureQueryLoader>(name, schema);
    expectFailure("CREATE PROCEDURE");
    load<MSSQLScriptAlterStoredProcedureQueryLoader>(name, schema);
    expectFailure("ALTER PROCEDURE");
    load<MSSQLScriptCreateFunctionQueryLoader>(utf8("dbo.x"));
    expectFailure("CREATE FUNCTION");
    load<MSSQLScriptAlterFunctionQueryLoader>(name, schema);
    expectFailure("ALTER FUNCTION");
    load<MSSQLScriptCreateTypeQueryLoader>(name, schema, 0);
    expectFailure("CREATE TYPE");
    load<MSSQLScriptDropAndCreateViewQueryLoader>(name, schema);
    expectFailure("DROP and CREATE VIEW");
    EXPECT_GT(m_report.unsafeLength, 0);
}

TEST_F(ScriptReport, NeverLetsATableBeDroppedWhosePartsAreHidden)
{
    answer("table dbo t",
           {{text("CREATE TABLE dbo.t (\r\n\ta AS /* its definition may not be seen by this login */)")}});
    load<MSSQLScriptDropAndCreateTableQueryLoader>(utf8("t"), utf8("dbo"));
    EXPECT_TRUE(m_report.failure);
    EXPECT_EQ(m_report.unsafeLength, utf8("DROP TABLE dbo.t\r\nGO\r\n\r\n").size());
    answer("table dbo t", {{text("CREATE TABLE dbo.t (a text DEFAULT 'may not be seen by this login')")}});
    load<MSSQLScriptDropAndCreateTableQueryLoader>(utf8("t"), utf8("dbo"));
    EXPECT_FALSE(m_report.failure) << "a literal of the user's";
}

TEST_F(ScriptReport, NeverLetsAnEncryptedModuleBeDropped)
{
    load<MSSQLScriptDropAndCreateStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"));
    EXPECT_EQ(
        guarded(),
        utf8("-- This script is incomplete: The definition of dbo.p is encrypted, may not be seen by this "
             "login, or is not there any more.\r\n"
             "-- What must not run without the missing part is commented out.\r\n"
             "-- DROP PROCEDURE p\r\n-- GO\r\n"
             "-- Failed to load creation query for stored procedure dbo.p in database shop."));
    load<MSSQLScriptDropAndCreateFunctionQueryLoader>(utf8("dbo.f"));
    EXPECT_EQ(m_report.unsafeLength, utf8("DROP FUNCTION dbo.f\r\nGO\r\n").size());
    answer("view dbo.v", {{KNValue(true), KNValue(true), text("-- The definition of view v is encrypted")}});
    load<MSSQLScriptDropAndCreateViewQueryLoader>(utf8("v"), utf8("dbo"));
    EXPECT_TRUE(m_report.failure);
    EXPECT_EQ(m_report.unsafeLength, utf8("DROP VIEW dbo.v\r\nGO\r\n\r\n").size());
    EXPECT_TRUE(guarded().contains(utf8("-- DROP VIEW dbo.v\r\n"))) << guarded().toStdString();
}

TEST_F(ScriptReport, NeverLetsATableTypeBeDropped)
{
    load<MSSQLScriptDropAndCreateTypeQueryLoader>(utf8("Ids"), utf8("dbo"), 1);
    EXPECT_TRUE(m_report.failure);
    EXPECT_TRUE(guarded().contains(utf8("-- DROP TYPE dbo.Ids\r\n"))) << guarded().toStdString();
    EXPECT_TRUE(guarded().contains(utf8("-- Unhandled\r\n"))) << guarded().toStdString();
}

TEST_F(ScriptReport, ACorrectedStatementCreatesATableType)
{
    KNUserDefaults::standardUserDefaults()->setObject(CorrectedKey, true);
    answer("table type dbo Ids", {{KNValue(qint64(0)), KNValue(qint64(1)), KNValue(utf8("[a] int NOT NULL")),
                                   KNValue(), KNValue(), KNValue(qint64(0))}});
    load<MSSQLScriptCreateTypeQueryLoader>(utf8("Ids"), utf8("dbo"), 1);
    EXPECT_FALSE(m_report.failure);
    EXPECT_EQ(m_text, utf8("CREATE TYPE [dbo].[Ids] AS TABLE (\r\n\t[a] int NOT NULL\r\n)"));
    load<MSSQLScriptDropAndCreateTypeQueryLoader>(utf8("Ids"), utf8("dbo"), 1);
    EXPECT_EQ(m_report.unsafeLength, 0);
    EXPECT_TRUE(m_text.startsWith(utf8("DROP TYPE dbo.Ids\r\nGO\r\n\r\nCREATE TYPE [dbo].[Ids]")));
    load<MSSQLScriptDropAndCreateTypeQueryLoader>(utf8("gone"), utf8("dbo"), 1);
    EXPECT_TRUE(m_report.failure);
    EXPECT_TRUE(guarded().contains(utf8("-- DROP TYPE dbo.gone\r\n"))) << guarded().toStdString();
}

TEST_F(ScriptReport, NeverLetsATableTypeBeDroppedWhosePartsAreHidden)
{
    KNUserDefaults::standardUserDefaults()->setObject(CorrectedKey, true);
    answer("table type dbo Ids", {{KNValue(qint64(0)), KNValue(qint64(1)),
                                   text("[a] int DEFAULT /* its definition may not be seen by this login */"),
                                   KNValue(), KNValue(), KNValue(qint64(0))}});
    load<MSSQLScriptDropAndCreateTypeQueryLoader>(utf8("Ids"), utf8("dbo"), 1);
    EXPECT_EQ(m_report.failure.localizedDescription(),
              utf8("Parts of the table type dbo.Ids may not be seen by this login."));
    EXPECT_TRUE(guarded().contains(utf8("-- DROP TYPE dbo.Ids\r\n"))) << guarded().toStdString();
}

TEST_F(ScriptReport, NeverLetsAViewBeDroppedWithoutItsTriggers)
{
    m_server.queries.insert(utf8("List_ViewTriggerStatements"), utf8("triggers {SCHEMA} {OBJECT}"));
    m_server.queries.insert(utf8("List_ExtendedPropertyStatements"), utf8("properties {SCHEMA} {OBJECT}"));
    answer("view dbo.v", {{KNValue(true), KNValue(true), text("CREATE VIEW dbo.v AS SELECT 1 AS a")}});
    fail("triggers dbo v");
    const MSSQLScriptSubject view{utf8("VIEW"), utf8("dbo"), utf8("v"), m_settings.copy()};
    const auto loader = view.creation<MSSQLScriptDropAndCreateViewQueryLoader>(utf8("v"), utf8("dbo"));
    m_text = textOf(loader, m_settings);
    m_report = loader->report();
    EXPECT_EQ(m_report.failure.code(), 208);
    EXPECT_TRUE(guarded().contains(utf8("-- DROP VIEW dbo.v\r\n-- GO\r\n"))) << guarded().toStdString();
    EXPECT_TRUE(guarded().contains(utf8("\r\nCREATE VIEW dbo.v"))) << guarded().toStdString();
}

TEST_F(ScriptReport, CommentsOutTextThatIsNoScript)
{
    fail("alter dbo p shop");
    load<MSSQLScriptAlterStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"));
    EXPECT_EQ(m_report.failure.code(), 208);
    EXPECT_TRUE(
        guarded().endsWith(utf8("-- Failed to load query. Error was:\r\n-- Invalid object name 'x'.\r\n")))
        << guarded().toStdString();
}

TEST_F(ScriptReport, HoldsTheIndexesThatCouldNotBeLoaded)
{
    answer("view dbo.v", {{KNValue(true), KNValue(true), text("CREATE VIEW v AS SELECT 1")}});
    fail("index sys.views t.object_id = OBJECT_ID('v') v");
    load<MSSQLScriptAlterViewQueryLoader>(utf8("v"), utf8("dbo"));
    EXPECT_EQ(m_report.failure.code(), 208);
}

TEST_F(ScriptReport, AltersAModuleHoweverItsHeaderIsWritten)
{
    const char *const settings = "SET A\r\nGO\r\nSET B\r\nGO\r\n";
    for (const char *header : {"create proc\r\np AS", "create\tproc p AS", "create  procedure  p AS",
                               "CREATE   PROC p AS", "-- about\r\nCreate Proc p AS"}) {
        answer("alter dbo p shop", {{text("SET A"), text("SET B"), text(header)}});
        load<MSSQLScriptAlterStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"));
        EXPECT_TRUE(m_text.contains(utf8("ALTER PROCEDURE"))) << m_text.toStdString();
        EXPECT_FALSE(m_text.contains(utf8("create"), Qt::CaseInsensitive)) << m_text.toStdString();
        EXPECT_TRUE(m_report.notices.isEmpty());
    }
    answer("function dbo f shop", {{text("SET A"), text("SET B"), text("create\r\nfunction f()")}});
    load<MSSQLScriptAlterFunctionQueryLoader>(utf8("f"), utf8("dbo"));
    EXPECT_EQ(m_text, utf8(settings) + utf8("ALTER FUNCTION f()\r\nGO"));
    answer("view dbo.v", {{KNValue(true), KNValue(true), text("create \n view v AS SELECT 1")}});
    load<MSSQLScriptAlterViewQueryLoader>(utf8("v"), utf8("dbo"));
    EXPECT_TRUE(m_text.endsWith(utf8("\r\n\r\nALTER VIEW v AS SELECT 1"))) << m_text.toStdString();
}

TEST_F(ScriptReport, KeepsTheStoredTextOfARenamedObject)
{
    const QList<QList<KNValue>> row{
        {text("SET A"), text("SET B"), text("create procedure p as SELECT 'old'")}};
    answer("alter dbo fresh shop", row);
    load<MSSQLScriptAlterStoredProcedureQueryLoader>(utf8("fresh"), utf8("dbo"));
    EXPECT_EQ(m_text, utf8("SET A\r\nGO\r\nSET B\r\nGO\r\nALTER PROCEDURE p as SELECT 'old'\r\nGO"));
    answer("create dbo fresh shop", row);
    load<MSSQLScriptCreateStoredProcedureQueryLoader>(utf8("fresh"), utf8("dbo"));
    EXPECT_EQ(m_text, utf8("SET A\r\nGO\r\nSET B\r\nGO\r\ncreate procedure p as SELECT 'old'\r\nGO"));
    answer("view s.fresh",
           {{KNValue(true), KNValue(true), text("CREATE VIEW [dbo].[old] AS SELECT 1 AS a")}});
    load<MSSQLScriptCreateViewQueryLoader>(utf8("fresh"), utf8("s"));
    EXPECT_TRUE(m_text.endsWith(utf8("CREATE VIEW [dbo].[old] AS SELECT 1 AS a"))) << m_text.toStdString();
}

TEST_F(ScriptReport, NamesARenamedObjectForEveryCallerAndSaysSo)
{
    answer("view s.fresh",
           {{KNValue(true), KNValue(true), text("CREATE VIEW [dbo].[old] AS SELECT 1 AS a")}});
    const MSSQLScriptSubject view{utf8("VIEW"), utf8("s"), utf8("fresh"), m_settings.copy()};
    const auto loader = view.script<MSSQLScriptAlterViewQueryLoader>(utf8("fresh"), utf8("s"));
    EXPECT_TRUE(textOf(loader, m_settings).endsWith(utf8("ALTER VIEW s.fresh AS SELECT 1 AS a")));
    EXPECT_EQ(loader->report().notices,
              QStringList{utf8("The definition names dbo.old, but the script was asked for the view s.fresh. "
                               "The script names the latter.")});
}

TEST_F(ScriptReport, ReportsChangedWordsInLiterals)
{
    answer("view dbo.v",
           {{KNValue(true), KNValue(true), text("CREATE VIEW v AS SELECT 'CREATE VIEW' AS a")}});
    load<MSSQLScriptAlterViewQueryLoader>(utf8("v"), utf8("dbo"));
    EXPECT_TRUE(m_text.endsWith(utf8("ALTER VIEW v AS SELECT 'ALTER VIEW' AS a"))) << m_text.toStdString();
    EXPECT_EQ(m_report.notices.size(), 1);
    answer("alter dbo p shop",
           {{text("SET A"), text("SET B"), text("CREATE PROC p AS -- create procedure")}});
    load<MSSQLScriptAlterStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"));
    EXPECT_EQ(m_report.notices.size(), 1);
}

TEST_F(ScriptReport, ChangesTheHeaderOnlyWhenStatementsAreCorrected)
{
    KNUserDefaults::standardUserDefaults()->setObject(CorrectedKey, true);
    answer("view dbo.v",
           {{KNValue(true), KNValue(true), text("CREATE VIEW v AS SELECT 'CREATE VIEW' AS a")}});
    load<MSSQLScriptAlterViewQueryLoader>(utf8("v"), utf8("dbo"));
    EXPECT_TRUE(m_text.endsWith(utf8("ALTER VIEW v AS SELECT 'CREATE VIEW' AS a"))) << m_text.toStdString();
    EXPECT_TRUE(m_report.notices.isEmpty());
    answer("view dbo.w", {{KNValue(true), KNValue(true), text("CREATE VIEW w AS SELECT 'ALTER VIEW' AS a")}});
    load<MSSQLScriptCreateViewQueryLoader>(utf8("w"), utf8("dbo"));
    EXPECT_TRUE(m_text.endsWith(utf8("CREATE VIEW w AS SELECT 'ALTER VIEW' AS a"))) << m_text.toStdString();
    answer("alter dbo p shop",
           {{text("SET A"), text("SET B"), text("create proc p AS -- create procedure")},
            {text("\r\nSET A"), text("SET B"), text("create procedure p;2 AS SELECT 'CREATE PROCEDURE'")}});
    load<MSSQLScriptAlterStoredProcedureQueryLoader>(utf8("p"), utf8("dbo"));
    EXPECT_TRUE(m_text.contains(utf8("ALTER PROCEDURE p AS -- create procedure"))) << m_text.toStdString();
    EXPECT_TRUE(m_text.contains(utf8("ALTER procedure p;2 AS SELECT 'CREATE PROCEDURE'")))
        << m_text.toStdString();
}

TEST_F(ScriptReport, LooksForTheIndexesOfAViewOfAnotherSchemaWithTheSchema)
{
    answer("view s1.VI", {{KNValue(true), KNValue(true), text("CREATE VIEW s1.VI AS SELECT 1")}});
    answer("index sys.views t.object_id = OBJECT_ID('VI') VI", {{text("CREATE INDEX of_dbo")}});
    answer("index sys.views t.object_id = OBJECT_ID(N'[s1].[VI]') VI", {{text("CREATE INDEX of_s1")}});
    load<MSSQLScriptAlterViewQueryLoader>(utf8("VI"), utf8("s1"));
    EXPECT_TRUE(m_text.endsWith(utf8("executes.\r\nCREATE INDEX of_s1;"))) << m_text.toStdString();
    answer("index sys.views t.object_id = OBJECT_ID(N'[dbo].[a.b]') a.b", {{text("CREATE INDEX dotted")}});
    load<MSSQLScriptAlterViewQueryLoader>(utf8("a.b"), utf8("dbo"));
    EXPECT_TRUE(m_text.contains(utf8("CREATE INDEX dotted;"))) << m_text.toStdString();
}

TEST_F(ScriptReport, HoldsNamesInsideOfItsComments)
{
    const char *const name = "p\nDROP TABLE victim */ DROP TABLE victim /*";
    load<MSSQLScriptCreateStoredProcedureQueryLoader>(utf8(name), utf8("dbo"));
    EXPECT_EQ(m_text, utf8("-- Failed to load creation query for stored procedure dbo.p DROP TABLE victim */ "
                           "DROP TABLE victim /* in database shop."));
    load<MSSQLScriptCreateFunctionQueryLoader>(utf8(name), utf8("dbo"));
    EXPECT_FALSE(m_text.contains(QLatin1Char('\n'))) << m_text.toStdString();
    load<MSSQLScriptAlterFunctionQueryLoader>(utf8(name), utf8("dbo"));
    EXPECT_FALSE(m_text.contains(QLatin1Char('\n'))) << m_text.toStdString();
    fail((std::string("view dbo.[") + name + "]").c_str());
    load<MSSQLScriptAlterViewQueryLoader>(utf8(name), utf8("dbo"));
    EXPECT_EQ(m_text, utf8("/* Failed to load query for view p DROP TABLE victim * / DROP TABLE victim / *. "
                           "Error was:\r\nInvalid object name 'x'.\r\n*/"));
}

TEST_F(ScriptReport, ScriptsAFunctionWhoseNamesHoldDots)
{
    answer("function a.b c.d shop", {{text("SET A"), text("SET B"), text("CREATE FUNCTION [a.b].[c.d]()")}});
    load<MSSQLScriptCreateFunctionQueryLoader>(utf8("c.d"), utf8("a.b"));
    EXPECT_TRUE(m_text.contains(utf8("CREATE FUNCTION [a.b].[c.d]()"))) << m_text.toStdString();
    load<MSSQLScriptDropAndCreateFunctionQueryLoader>(utf8("c.d"), utf8("a.b"));
    EXPECT_TRUE(m_text.startsWith(utf8("DROP FUNCTION a.b.c.d\r\nGO\r\nSET A"))) << m_text.toStdString();
}

TEST_F(ScriptReport, KeepsTheNameOfAViewThatHoldsTheWordsOfTheStatement)
{
    answer("view dbo.[ALTER VIEW]",
           {{KNValue(true), KNValue(true), text("CREATE VIEW [ALTER VIEW] AS SELECT 1")}});
    answer("index sys.views t.object_id = OBJECT_ID('ALTER VIEW') ALTER VIEW",
           {{text("CREATE INDEX i ON [dbo].[ALTER VIEW] (a)")}});
    load<MSSQLScriptCreateViewQueryLoader>(utf8("ALTER VIEW"), utf8("dbo"));
    EXPECT_TRUE(m_text.contains(utf8("CREATE VIEW [ALTER VIEW] AS SELECT 1"))) << m_text.toStdString();
    EXPECT_TRUE(m_text.endsWith(utf8("ON [dbo].[ALTER VIEW] (a);"))) << m_text.toStdString();
}
