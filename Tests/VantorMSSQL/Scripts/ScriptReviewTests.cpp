#include "Implementations/MSSQLObjectPath.h"
#include "Scripts/MSSQLScriptDropColumnInTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropIndexQueryLoader.h"
#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropViewQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "VantorMSSQL/Scripts/ScriptTest.h"

namespace ScriptReviewTests {

namespace {

QString u(const char *text)
{
    return QString::fromUtf8(text);
}

MSSQLScriptSubject subject(const char *kind, const char *schema, const char *name)
{
    return {u(kind), u(schema), u(name)};
}

/// The text of a generator for a subject.
template <typename Loader, typename... Arguments>
QString reviewed(const MSSQLScriptSubject &subject, const Arguments &...arguments)
{
    FakeDatabase::Server server;
    return ScriptTest::textOf(subject.script<Loader>(arguments...), FakeDatabase::Settings(server));
}

struct Reviewed
{
    QString text;
    KNQueryReport report;
};

Reviewed review(const MSSQLScriptSubject &subject, const QString &script, const KNQueryReport &before = {})
{
    Reviewed result{script, before};
    subject.review(&result.text, &result.report);
    return result;
}

/// A name and how T-SQL writes it in brackets: "]" doubled, everything else as it is.
struct HostileName
{
    const char *name;
    const char *bracketed;
};

constexpr HostileName HostileNames[] = {
    {"a]; DROP TABLE victim; --", "[a]]; DROP TABLE victim; --]"},
    {"[x]", "[[x]]]"},
    {"\"x\"", "[\"x\"]"},
    {"a.b", "[a.b]"},
    {"dbo.victim", "[dbo.victim]"},
    {"my thing", "[my thing]"},
    {"select", "[select]"},
    {"2019sales", "[2019sales]"},
    {"#t", "[#t]"},
    {"@t", "[@t]"},
    {"x--", "[x--]"},
    {"x/*", "[x/*]"},
    {"x'", "[x']"},
    {"x\r\nGO\r\nDROP TABLE victim\r\nGO\r\n", "[x\r\nGO\r\nDROP TABLE victim\r\nGO\r\n]"},
    {"x\u2028DROP TABLE victim", "[x\u2028DROP TABLE victim]"},
    {"\xF0\x9F\x8E\x81 gift", "[\xF0\x9F\x8E\x81 gift]"},
    {"\xF0\x9F\x8E\x81", "[\xF0\x9F\x8E\x81]"},
    {"x FROM int; DROP TABLE victim; --", "[x FROM int; DROP TABLE victim; --]"},
};

} // namespace

TEST(ObjectPath, ParsesPathsLikeServer)
{
    const auto reads = [](const char *text, std::initializer_list<const char *> parts) {
        QStringList names;
        for (const char *part : parts)
            names.append(u(part));
        return MSSQLObjectPath::reads(u(text), names);
    };
    EXPECT_TRUE(reads("dbo.Orders", {"dbo", "Orders"}));
    EXPECT_TRUE(reads("[dbo].[a]]b]", {"dbo", "a]b"}));
    EXPECT_TRUE(reads("dbo.Größe", {"dbo", "Größe"})) << "a letter outside of ASCII";
    EXPECT_TRUE(reads("a$b", {"a$b"}));
    EXPECT_TRUE(reads(".v", {"", "v"}));
    EXPECT_FALSE(reads("dbo.Orders; DROP TABLE t", {"dbo", "Orders"}));
    EXPECT_FALSE(reads("dbo.Orders", {"dbo", "orders"}));
    EXPECT_FALSE(reads("Orders", {"dbo", "Orders"}));
    EXPECT_FALSE(reads("dbo.select", {"dbo", "select"}));
    EXPECT_TRUE(reads("dbo.day", {"dbo", "day"})) << "a keyword that is not reserved";
    EXPECT_FALSE(reads("dbo.Key", {"dbo", "Key"}));
    EXPECT_FALSE(reads("[a]]", {"a]"})) << "the bracket is not closed";
    EXPECT_FALSE(reads("[a]", {"[a]"}));
    EXPECT_FALSE(reads("dbo.my proc", {"dbo", "my proc"}));
    EXPECT_FALSE(reads("@x", {"@x"}));
}

TEST(ScriptReview, KeepsTheTextOfNamesThatAreQuotedRightly)
{
    for (const char *script :
         {"DROP PROCEDURE p", "DROP PROCEDURE dbo.p", "DROP PROCEDURE p\r\nGO\r\nCREATE PROC p AS SELECT 1",
          "SET ANSI_NULLS ON\r\nGO\r\n-- about\r\ncreate or alter proc [dbo].p;2 as DROP TABLE victim"}) {
        const Reviewed result = review(subject("PROCEDURE", "dbo", "p"), u(script));
        EXPECT_EQ(result.text, u(script));
        EXPECT_FALSE(result.report.failure) << script;
    }
    const MSSQLScriptSubject letters = subject("FUNCTION", "dbo", "Größe");
    EXPECT_EQ(reviewed<MSSQLScriptDropFunctionQueryLoader>(letters, letters.name, letters.schema),
              u("DROP FUNCTION dbo.Größe"));
}

TEST(ScriptReview, QuotesEveryNameOfEveryDropScript)
{
    for (const auto &[name, bracketed] : HostileNames) {
        const QString path = u("dbo.") + u(bracketed);
        const auto of = [name = name](const char *kind) { return subject(kind, "dbo", name); };
        EXPECT_EQ(reviewed<MSSQLScriptDropTableQueryLoader>(of("TABLE"), u(name), u("dbo")),
                  u("DROP TABLE ") + path);
        EXPECT_EQ(reviewed<MSSQLScriptDropViewQueryLoader>(of("VIEW"), u(name), u("dbo")),
                  u("DROP VIEW ") + path);
        EXPECT_EQ(reviewed<MSSQLScriptDropStoredProcedureQueryLoader>(of("PROCEDURE"), u(name), u("dbo")),
                  u("DROP PROCEDURE ") + path);
        EXPECT_EQ(reviewed<MSSQLScriptDropFunctionQueryLoader>(of("FUNCTION"), u(name), u("dbo")),
                  u("DROP FUNCTION ") + path);
        EXPECT_EQ(reviewed<MSSQLScriptDropTypeQueryLoader>(of("TYPE"), u(name), u("dbo"), 0),
                  u("DROP TYPE ") + path + u("\r\nGO"));
        const Reviewed trigger =
            review(of("TRIGGER"), u("DROP TRIGGER ") + u(name) + u("\r\nGO\r\n\r\nCREATE TRIGGER ") +
                                      u(bracketed) + u(" ON t AFTER INSERT AS SELECT 1\r\nGO"));
        EXPECT_EQ(trigger.text, u("DROP TRIGGER ") + path + u("\r\nGO\r\n\r\nCREATE TRIGGER ") +
                                    u(bracketed) + u(" ON t AFTER INSERT AS SELECT 1\r\nGO"));
    }
}

TEST(ScriptReview, QuotesSchemasTablesIndexesAndColumns)
{
    for (const auto &[name, bracketed] : HostileNames) {
        EXPECT_EQ(reviewed<MSSQLScriptDropViewQueryLoader>(subject("VIEW", name, "v"), u("v"), u(name)),
                  u("DROP VIEW ") + u(bracketed) + u(".v"));
        const MSSQLScriptSubject index{u("INDEX"), u("dbo"), u(name), {}, u(name)};
        EXPECT_EQ(reviewed<MSSQLScriptDropIndexQueryLoader>(index, index.name, index.table, index.schema),
                  u("DROP INDEX dbo.") + u(bracketed) + u(".") + u(bracketed));
        const MSSQLScriptSubject column{u("COLUMN"), u("dbo"), u(name), {}, u(name)};
        EXPECT_EQ(reviewed<MSSQLScriptDropColumnInTableQueryLoader>(column, column.name, column.table,
                                                                    column.schema),
                  u("ALTER TABLE dbo.") + u(bracketed) + u(" DROP COLUMN ") + u(bracketed));
    }
}

TEST(ScriptReview, QuotesBothNamesOfATypeThatIsMadeAnew)
{
    for (const auto &[name, bracketed] : HostileNames) {
        const QString raw = u("dbo.") + u(name);
        const QString path = u("dbo.") + u(bracketed);
        const Reviewed result =
            review(subject("TYPE", "dbo", name), u("DROP TYPE ") + raw + u("\r\nGO\r\n\r\nCREATE TYPE ") +
                                                     raw + u(" FROM nvarchar(12) NULL\r\nGO"));
        EXPECT_EQ(result.text, u("DROP TYPE ") + path + u("\r\nGO\r\n\r\nCREATE TYPE ") + path +
                                   u(" FROM nvarchar(12) NULL\r\nGO"));
        EXPECT_FALSE(result.report.failure);
    }
}

TEST(ScriptReview, KeepsTheUnsafePartWhole)
{
    const QString drop = u("DROP FUNCTION dbo.my f\r\nGO\r\n");
    const KNQueryReport incomplete{KNError(u("test"), 1, u("No definition.")), drop.size(), {}};
    const Reviewed result =
        review(subject("FUNCTION", "dbo", "my f"), drop + u("-- Failed to load."), incomplete);
    EXPECT_EQ(result.report.guardedText(result.text),
              u("-- This script is incomplete: No definition.\r\n"
                "-- What must not run without the missing part is commented out.\r\n"
                "-- DROP FUNCTION dbo.[my f]\r\n-- GO\r\n-- Failed to load."));
}

TEST(ScriptReview, RestoresANameThatAReplacementOfWordsHasChanged)
{
    EXPECT_EQ(review(subject("PROCEDURE", "dbo", "create procedure"),
                     u("SET ANSI_NULLS ON\r\nGO\r\nALTER PROCEDURE [ALTER PROCEDURE] AS SELECT 1"))
                  .text,
              u("SET ANSI_NULLS ON\r\nGO\r\nALTER PROCEDURE dbo.[create procedure] AS SELECT 1"));
}

TEST(ScriptReview, NamesTheObjectThatADefinitionWithAnOldNameIsOf)
{
    const Reviewed result =
        review(subject("PROCEDURE", "dbo", "my fresh"),
               u("SET A\r\nGO\r\n-- CREATE PROC dbo.old\r\nCREATE PROC dbo.old AS SELECT 'dbo.old'\r\nGO\r\n"
                 "SET A\r\nGO\r\nalter procedure old;2 AS EXEC dbo.old\r\nGO\r\n"
                 "CREATE PROC dbo.other;2 AS SELECT 1")
                   .replace(u("SET A"), u("SET ANSI_NULLS ON")));
    EXPECT_EQ(result.text, u("SET A\r\nGO\r\n-- CREATE PROC dbo.old\r\nCREATE PROC dbo.[my fresh] AS SELECT "
                             "'dbo.old'\r\nGO\r\nSET A\r\nGO\r\nalter procedure dbo.[my fresh];2 AS EXEC "
                             "dbo.old\r\nGO\r\nCREATE PROC dbo.other;2 AS SELECT 1")
                               .replace(u("SET A"), u("SET ANSI_NULLS ON")));
    EXPECT_EQ(result.report.notices,
              QStringList{u("The definition names dbo.old, but the script was asked for the procedure "
                            "dbo.my fresh. The script names the latter.")});
    EXPECT_FALSE(result.report.failure);
}

TEST(ScriptReview, NamesTheTriggerThatADefinitionWithAnOldNameIsOf)
{
    const Reviewed result = review(
        subject("TRIGGER", "s", "tr"),
        u("DROP TRIGGER tr\r\nGO\r\n\r\ncreate trigger dbo.old on s.t after insert as select 1\r\nGO"));
    EXPECT_EQ(result.text,
              u("DROP TRIGGER tr\r\nGO\r\n\r\ncreate trigger s.tr on s.t after insert as select 1\r\nGO"));
    EXPECT_EQ(
        result.report.notices.value(0),
        u("The definition names dbo.old, but the script was asked for the trigger s.tr. The script names "
          "the latter."));
}

TEST(ScriptReview, HasNoNoticeAboutTheCaseOfAName)
{
    const Reviewed result =
        review(subject("VIEW", "dbo", "Totals"), u("CREATE VIEW DBO.totals AS SELECT 1 AS a"));
    EXPECT_EQ(result.text, u("CREATE VIEW dbo.Totals AS SELECT 1 AS a"));
    EXPECT_EQ(result.report.notices, QStringList());
}

TEST(ScriptReview, LetsNoScriptRunThatItCannotRead)
{
    for (const char *script : {
             "DELETE FROM victim",
             "-- Not part of this script:\r\nDROP DATABASE shop\r\nCREATE TABLE dbo.t (a int)",
             "DROP TABLE dbo.t; DROP TABLE victim",
             "DROP TABLE dbo.t\r\nGO\r\nEXEC evil",
             "DROP TABLE dbo.other",
             "drop table dbo.t",
             "CREATE VIEW dbo.t AS SELECT 1",
         }) {
        const Reviewed result = review(subject("TABLE", "dbo", "t"), u(script));
        EXPECT_TRUE(result.report.failure) << script;
        for (const QString &line : result.report.guardedText(result.text).split(u("\r\n")))
            EXPECT_TRUE(line.isEmpty() || line.startsWith(u("-- "))) << line.toStdString();
    }
}

TEST(ScriptReview, LeavesTheCreationOfATableTypeAsItIs)
{
    for (const auto &[name, bracketed] : HostileNames) {
        SCOPED_TRACE(name);
        const QString script =
            u("CREATE TYPE [dbo].") + u(bracketed) + u(" AS TABLE (\r\n\t[a] int NOT NULL\r\n)");
        const Reviewed result = review(subject("TYPE", "dbo", name), script);
        EXPECT_FALSE(result.report.failure);
        EXPECT_EQ(result.report.unsafeLength, 0);
        EXPECT_EQ(result.text, script);
        EXPECT_TRUE(review(subject("TYPE", "dbo", "other"), script).report.failure);
    }
}

} // namespace ScriptReviewTests
