#include "Support/HostileServerRelay.h"
#include "Support/TestText.h"
#include "Vantor/Program.h"

#include "Foundation/KNFormat.h"

#include <gtest/gtest.h>

namespace {

QString bracketed(QString name)
{
    return QLatin1Char('[') + name.replace(QLatin1Char(']'), QLatin1String("]]")) + QLatin1Char(']');
}

/// A database of its own, in which dbo.Item and des.Item stand: whatever is done to one must not be done to
/// the other.
class DesignCommand : public testing::Test
{
protected:
    DesignCommand()
    {
        query("IF DB_ID('design') IS NOT NULL DROP DATABASE design\nGO\nCREATE DATABASE design", "master");
        query("CREATE SCHEMA des\nGO\n"
              "CREATE TABLE dbo.Item (id int NOT NULL, name nvarchar(20) NULL, amount int NOT NULL "
              "CONSTRAINT DF_dbo DEFAULT 1, twice AS amount * 2)\n"
              "CREATE TABLE des.Item (id int NOT NULL, name nvarchar(20) NULL, amount int NOT NULL "
              "CONSTRAINT DF_des DEFAULT 1, twice AS amount * 2)");
    }

    static Outcome runAt(quint16 port, const QStringList &arguments, const char *database = "design")
    {
        return Program(QStringList{arguments.first(), q("--server"), q("127.0.0.1,%1").arg(port), q("--user"),
                                   q("sa"), q("--database"), QString::fromLatin1(database)} +
                       arguments.mid(1))
            .wait();
    }
    static quint16 port() { return SampleServerFixture::shared().port(); }
    static QByteArray query(const QString &sql, const char *database = "design")
    {
        const Outcome outcome = runAt(port(), {q("query"), q("--format"), q("csv"), sql}, database);
        EXPECT_EQ(outcome.status, 0) << sql.toStdString() << "\n" << outcome.errors.toStdString();
        return outcome.output;
    }
    static QByteArray query(const char *sql, const char *database = "design")
    {
        return query(q(sql), database);
    }
    static QStringList words(std::initializer_list<const char *> arguments)
    {
        QStringList texts{q("design")};
        for (const char *argument : arguments)
            texts.append(q(argument));
        return texts;
    }
    static Outcome design(std::initializer_list<const char *> arguments)
    {
        return runAt(port(), words(arguments));
    }
    static QByteArray apply(std::initializer_list<const char *> arguments)
    {
        const Outcome outcome = runAt(port(), words(arguments) + QStringList{q("--apply"), q("--corrected")});
        EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
        return outcome.output;
    }
    /// The script that makes the table, such as dbo.Item.
    static QByteArray scriptOf(const char *table)
    {
        // The tree shows tables of the default schema without it.
        if (qstrncmp(table, "dbo.", 4) == 0)
            table += 4;
        const Outcome outcome = runAt(port(), {q("script"), q("design/Tables/") + q(table), q("CREATE to")});
        EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
        return outcome.output;
    }
    /// Whether the script of the table holds this text.
    static bool has(const char *table, const char *text) { return scriptOf(table).contains(text); }

    /// A result with the number of columns of this name in the table.
    static QByteArray countOf(QString table, QString column, const char *condition = "")
    {
        const QString apostrophe = q("'");
        table.replace(apostrophe, q("''"));
        column.replace(apostrophe, q("''"));
        return query(
            KNFormat("SELECT COUNT(*) AS n FROM sys.columns c INNER JOIN sys.tables t ON t.object_id = "
                     "c.object_id WHERE t.name = N'%@' AND c.name = N'%@' %@",
                     table, column, condition));
    }

    static void expectRefusal(std::initializer_list<const char *> arguments, const char *reason)
    {
        const QByteArray before = scriptOf("dbo.Item");
        const Outcome outcome = runAt(port(), words(arguments) + QStringList{q("--apply")});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_TRUE(outcome.errors.contains(reason)) << outcome.errors.toStdString();
        EXPECT_EQ(outcome.output, QByteArray());
        EXPECT_EQ(scriptOf("dbo.Item"), before);
    }
};

const char WrappedHead[] = "BEGIN TRY\r\nBEGIN TRANSACTION\r\n\r\n";
const char WrappedTail[] =
    "\r\n\r\nCOMMIT TRAN\r\n\r\n\r\n\r\nEND TRY\r\n\r\nBEGIN CATCH\r\n\r\nIF @@TRANCOUNT > 0\r\n\r\n"
    "ROLLBACK TRAN\r\n\r\n        DECLARE @ErrorMessage NVARCHAR(4000);\r\nDECLARE @ErrorSeverity INT;\r\n"
    "DECLARE @ErrorState INT;\r\nSELECT\r\n@ErrorMessage = ERROR_MESSAGE(),\r\n@ErrorSeverity = "
    "ERROR_SEVERITY(),\r\n@ErrorState = ERROR_STATE();\r\n\r\nRAISERROR (@ErrorMessage, -- Message text.\r\n"
    "@ErrorSeverity, -- Severity.\r\n@ErrorState -- State.\r\n);\r\n\r\nEND CATCH\r\nGO\r\n";

} // namespace

TEST_F(DesignCommand, PrintsTheScriptOfAnEditWithoutRunningIt)
{
    const QByteArray before = scriptOf("dbo.Item");
    const Outcome outcome = design({"Item", "--column", "name", "--set", "type=nvarchar(40)"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, QByteArray());
    EXPECT_EQ(outcome.output,
              QByteArray(WrappedHead) + "ALTER TABLE dbo.Item ALTER COLUMN name nvarchar(40)" + WrappedTail);
    EXPECT_EQ(scriptOf("dbo.Item"), before);
}

TEST_F(DesignCommand, PrintsABatchForEachChangeInTheirOrder)
{
    const Outcome outcome = design({"des.Item", "--column", "name", "--set", "nullable=false", "--set",
                                    "name=title", "--set", "primary=true"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              QByteArray(WrappedHead) + "ALTER TABLE des.Item ALTER COLUMN name nvarchar(20) NOT NULL" +
                  WrappedTail + WrappedHead + "EXEC sp_rename 'des.Item.name', 'title', 'COLUMN'" +
                  WrappedTail + WrappedHead + "ALTER TABLE des.Item ADD PRIMARY KEY(title);" + WrappedTail);
}

TEST_F(DesignCommand, AppliesEachKindOfChangeToTheTableThatIsMeant)
{
    const QByteArray other = scriptOf("dbo.Item");
    apply({"des.Item", "--column", "name", "--set", "type=nvarchar(40)"});
    EXPECT_TRUE(has("des.Item", "[name] nvarchar(40)"));
    apply({"des.Item", "--column", "name", "--set", "nullable=no"});
    apply({"des.Item", "--column", "name", "--set", "default='it''s \"so\"'"});
    EXPECT_TRUE(has("des.Item", "('it''s \"so\"')"));
    apply({"des.Item", "--column", "name", "--set", "default="});
    EXPECT_FALSE(has("des.Item", "it''s"));
    apply({"des.Item", "--column", "name", "--set", "primary=true"});
    EXPECT_TRUE(has("des.Item", "PRIMARY KEY CLUSTERED"));
    apply({"des.Item", "--column", "id", "--set", "primary=true"});
    apply({"des.Item", "--column", "name", "--set", "primary=false"});
    apply({"des.Item", "--column", "id", "--set", "primary=false"});
    EXPECT_FALSE(has("des.Item", "PRIMARY KEY"));
    apply({"des.Item", "--column", "name", "--set", "name=it's [a] \"title\""});
    EXPECT_TRUE(has("des.Item", "[it's [a]] \"title\"]"));
    apply({"des.Item", "--column", "added", "--add", "--set", "type=money", "--set", "default=7"});
    EXPECT_TRUE(has("des.Item", "[added] money"));
    apply({"des.Item", "--column", "added", "--set", "default="});
    apply({"des.Item", "--column", "added", "--drop"});
    EXPECT_FALSE(has("des.Item", "added"));
    EXPECT_EQ(scriptOf("dbo.Item"), other);
}

TEST_F(DesignCommand, AppliesExactStatementsToTheTableThatIsMeant)
{
    const QByteArray other = scriptOf("dbo.Item");
    const auto applyExact = [](std::initializer_list<const char *> arguments) {
        const Outcome outcome = runAt(port(), words(arguments) + QStringList{q("--apply")});
        EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    };
    applyExact({"des.Item", "--column", "name", "--set", "type=nvarchar(40)", "--set", "nullable=false"});
    applyExact({"des.Item", "--column", "name", "--set", "default='x'"});
    EXPECT_TRUE(has("des.Item", "('x')"));
    applyExact({"des.Item", "--column", "name", "--set", "default="});
    EXPECT_FALSE(has("des.Item", "('x')"));
    applyExact({"des.Item", "--column", "id", "--set", "primary=true"});
    applyExact({"des.Item", "--column", "name", "--set", "primary=true"});
    applyExact({"des.Item", "--column", "id", "--set", "primary=false"});
    applyExact({"des.Item", "--column", "name", "--set", "primary=false"});
    applyExact({"des.Item", "--column", "name", "--set", "name=title"});
    applyExact({"des.Item", "--column", "added", "--add"});
    EXPECT_TRUE(has("des.Item", "[added] int"));
    applyExact({"des.Item", "--column", "added", "--drop"});
    EXPECT_FALSE(has("des.Item", "added"));
    EXPECT_EQ(scriptOf("dbo.Item"), other);

    const QByteArray there = scriptOf("des.Item");
    applyExact({"Item", "--column", "added", "--add", "--set", "default=3"});
    applyExact({"Item", "--column", "id", "--set", "primary=true"});
    applyExact({"Item", "--column", "id", "--set", "primary=false"});
    applyExact({"Item", "--column", "added", "--set", "default="});
    applyExact({"Item", "--column", "added", "--drop"});
    EXPECT_EQ(scriptOf("dbo.Item"), other);
    EXPECT_EQ(scriptOf("des.Item"), there);
}

TEST_F(DesignCommand, SaysThatThereIsNothingToChange)
{
    const Outcome outcome = design({"Item", "--column", "id", "--set", "type=int", "--apply"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, QByteArray("There is nothing to change.\n"));
}

TEST_F(DesignCommand, RefusesWhatTheGridRefuses)
{
    expectRefusal({"Item", "--column", "name", "--set", "primary=true"},
                  "You must disable 'nullable' before this column can become a primary key.");
    expectRefusal({"Item", "--column", "twice", "--set", "type=int"},
                  "A computed column. Only its name can be changed here.");
    expectRefusal({"Item", "--column", "name", "--set", "identity=true"},
                  "A column of type nvarchar(20) cannot be an identity column.");
    expectRefusal({"Item", "--column", "id", "--set", "name="}, "A column needs a name.");
    expectRefusal({"Item", "--column", "id", "--set", "type= "}, "A column needs a type.");
    expectRefusal({"Item", "--column", "id", "--add"}, "Table dbo.Item already has a column 'id'.");
    query("CREATE TABLE dbo.Single (a int)");
    expectRefusal({"Single", "--column", "a", "--drop"}, "The last column cannot be removed from a table.");
}

TEST_F(DesignCommand, RefusesTablesAndColumnsThatAreNotThere)
{
    expectRefusal({"Nothing", "--column", "a", "--set", "type=int"}, "Table dbo.Nothing was not found");
    expectRefusal({"nowhere.Item", "--column", "a", "--set", "type=int"}, "Table nowhere.Item was not found");
    expectRefusal({"Item", "--column", "nope", "--set", "type=int"}, "Table dbo.Item has no column 'nope'.");
    expectRefusal({"Item", "--column", "nope", "--drop"}, "Table dbo.Item has no column 'nope'.");
    for (const char *path : {"a.b.c", "[Item", "[dbo]Item", "dbo.", ".Item", ""})
        expectRefusal({path, "--column", "a", "--drop"}, "is no path of a table.");
}

TEST_F(DesignCommand, RefusesContradictoryArguments)
{
    const auto expectUsage = [](std::initializer_list<const char *> arguments, const char *reason) {
        const Outcome outcome = design(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_TRUE(outcome.errors.contains(reason)) << outcome.errors.toStdString();
    };
    expectUsage({"Item", "--set", "type=int"}, "Name the column with --column.");
    expectUsage({"--column", "id", "--set", "type=int"}, "Give one table");
    expectUsage({"Item", "--column", "id"}, "Give --set, --add or --drop.");
    expectUsage({"Item", "--column", "id", "--drop", "--add"}, "--drop takes neither --add nor --set.");
    expectUsage({"Item", "--column", "id", "--drop", "--set", "type=int"}, "--drop takes neither");
    expectUsage({"Item", "--column", "id", "--set", "colour=red"}, "\"colour=red\" sets nothing.");
    expectUsage({"Item", "--column", "id", "--set", "type"}, "\"type\" sets nothing.");
    expectUsage({"Item", "--column", "id", "--set", "nullable=maybe"}, "nullable is true or false");
    expectUsage({"Item", "--column", "id", "--set", "type=int", "--set", "type=int"}, "type is set twice.");
    expectUsage({"Item", "--column", "id", "--set", "type=int", "--force"}, "--force needs --apply.");
    expectUsage({"Item", "--column", "id", "--set", "type=int", "--on-error", "ask"}, "--on-error is stop");
}

TEST_F(DesignCommand, CountsTheRowsThatANewTypeDoesNotHoldAndWantsToBeForced)
{
    query("INSERT INTO dbo.Item (id, name) VALUES (1, N'a'), (2, N'longer'), (3, N'longest'), (4, NULL)");
    const char *const loss = "Change of the type of 'name' from nvarchar(20) to nvarchar(3): 2 rows have "
                             "values that the new type does not hold.\n";
    const Outcome printed = design({"Item", "--column", "name", "--set", "type=nvarchar(3)"});
    EXPECT_EQ(printed.status, 0);
    EXPECT_EQ(printed.errors, QByteArray(loss));
    EXPECT_TRUE(printed.output.contains("ALTER COLUMN name nvarchar(3)"));
    expectRefusal({"Item", "--column", "name", "--set", "type=nvarchar(3)"}, loss);

    const QByteArray before = scriptOf("dbo.Item");
    const Outcome forced =
        design({"Item", "--column", "name", "--set", "type=nvarchar(3)", "--apply", "--force"});
    EXPECT_EQ(forced.status, 1) << "the server refuses to cut values";
    EXPECT_TRUE(forced.errors.contains(loss)) << forced.errors.toStdString();
    EXPECT_EQ(scriptOf("dbo.Item"), before);

    apply({"Item", "--column", "name", "--set", "type=nvarchar(7)"});
    EXPECT_TRUE(has("dbo.Item", "[name] nvarchar(7)")) << "all values fit";
    expectRefusal({"Item", "--column", "name", "--set", "type=notatype"},
                  "It is unknown how many rows have values");
}

TEST_F(DesignCommand, CountsTheRowsThatANewTypeWouldRoundOrCut)
{
    query("ALTER TABLE dbo.Item ADD price decimal(9,2) NULL, due datetime2(7) NULL");
    query("INSERT INTO dbo.Item (id, price, due) VALUES (1, 1.25, '2020-01-02 03:04:05.1234567'), "
          "(2, 7.50, '2020-01-02'), (3, NULL, NULL)");
    const char *const one = "1 row has a value that the new type does not hold.";
    expectRefusal({"Item", "--column", "price", "--set", "type=decimal(9,1)"}, one);
    expectRefusal({"Item", "--column", "price", "--set", "type=int"},
                  "2 rows have values that the new type does not hold.");
    expectRefusal({"Item", "--column", "due", "--set", "type=datetime2(3)"}, one);
    expectRefusal({"Item", "--column", "due", "--set", "type=date"}, one);
    apply({"Item", "--column", "price", "--set", "type=decimal(8,2)"});
    EXPECT_TRUE(has("dbo.Item", "[price] decimal(8,2)")) << "no value changes";
}

TEST_F(DesignCommand, CountsByTheStoredNameWhenTheColumnIsRenamedFirst)
{
    query("INSERT INTO dbo.Item (id, name) VALUES (2, N'longer')");
    expectRefusal({"Item", "--column", "name", "--set", "name=title", "--set", "type=nvarchar(3)"},
                  "1 row has a value that the new type does not hold.");
}

TEST_F(DesignCommand, PrintsCautionsAsCommentsAndRunsSuchStatementsOnlyWhenForced)
{
    const Outcome printed = design({"Item", "--column", "id", "--set", "identity=true"});
    EXPECT_EQ(printed.status, 0);
    EXPECT_TRUE(printed.output.startsWith("-- SQL Server does not accept IDENTITY in ALTER COLUMN. "))
        << printed.output.toStdString();
    EXPECT_TRUE(
        printed.output.contains("\r\nALTER TABLE dbo.Item ALTER COLUMN id int NOT NULL IDENTITY (1,1)"));
    expectRefusal({"Item", "--column", "id", "--set", "identity=true"},
                  "Nothing was run. --force runs it all the same.");
    expectRefusal({"Item", "--column", "id", "--set", "identity=true", "--corrected"},
                  "No statement makes this change. SQL Server does not accept IDENTITY in ALTER COLUMN.");
    const QByteArray before = scriptOf("dbo.Item");
    EXPECT_EQ(design({"Item", "--column", "id", "--set", "identity=true", "--apply", "--force"}).status, 1);
    EXPECT_EQ(scriptOf("dbo.Item"), before);
}

TEST_F(DesignCommand, TakesOddNames)
{
    const QStringList names{
        q("we]ird"), q("it's"),  q("a.b.c"),  q("say \"hi\""),    q("🦆"),
        q("select"), q(" lead"), q("a]; --"), q("x\r\nGO\r\n--"), QString(128, QLatin1Char('n'))};
    for (const QString &name : names) {
        SCOPED_TRACE(name.toStdString());
        query(KNFormat("CREATE TABLE des.%@ (%@ int NULL, b int NULL)", bracketed(name), bracketed(name)));
        const QString path = q("des.") + bracketed(name);
        const auto change = [&](const QStringList &arguments) {
            const Outcome outcome =
                runAt(port(), QStringList{q("design"), path, q("--corrected"), q("--apply")} + arguments);
            EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
        };
        const QString column = q("--column=") + name;
        change({column, q("--set"), q("type=bigint"), q("--set"), q("nullable=false"), q("--set"),
                q("default=1"), q("--set"), q("primary=true")});
        change({column, q("--set"), q("default="), q("--set"), q("primary=false")});
        change({q("--column=b"), q("--drop")});
        const QString renamed = name.trimmed().left(100) + q("2");
        change({q("--column=b"), q("--add"), q("--set"), q("name=") + renamed});
        EXPECT_EQ(
            countOf(
                name, name,
                "AND c.is_nullable = 0 AND TYPE_NAME(c.user_type_id) = 'bigint' AND c.default_object_id = 0"),
            QByteArray("n\n1\n"));
        EXPECT_EQ(countOf(name, renamed), QByteArray("n\n1\n"));
    }
    EXPECT_EQ(query("SELECT COUNT(*) AS n FROM sys.tables"), QByteArray("n\n12\n"));
}

TEST_F(DesignCommand, RefusesAnExactStatementThatWouldReadANameOtherwise)
{
    query("CREATE TABLE dbo.[a]]b] (x int NULL, y int NULL)");
    const Outcome outcome = design({"[a]]b]", "--column", "x", "--drop", "--apply"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(
        outcome.errors.contains("SQL Server would not read the names in this statement as the ones shown."))
        << outcome.errors.toStdString();
    EXPECT_EQ(query("SELECT COUNT(*) AS n FROM sys.columns WHERE name = 'x'"), QByteArray("n\n1\n"));
}

TEST_F(DesignCommand, StopsAfterAnErrorUnlessItContinues)
{
    const auto setBoth = [](const char *onError) {
        return design({"Item", "--column", "amount", "--set", "default=no such(", "--set", "name=price",
                       "--apply", "--on-error", onError});
    };
    const Outcome stopped = setBoth("stop");
    EXPECT_EQ(stopped.status, 1);
    EXPECT_TRUE(stopped.errors.contains("1 batch was not run")) << stopped.errors.toStdString();
    EXPECT_TRUE(has("dbo.Item", "[amount]"));
    EXPECT_TRUE(has("dbo.Item", "CONSTRAINT [DF_dbo]"))
        << "the old default stays when the new one is refused";
    EXPECT_EQ(setBoth("continue").status, 1);
    EXPECT_TRUE(has("dbo.Item", "[price]"));
}

TEST_F(DesignCommand, ReportsWhatTheServerRefuses)
{
    HostileServerRelay blind(port(), HostileServerRelay::Fault::None, 0);
    blind.replaceInBatches(u"FROM sys.columns AS col", u"FROM syz.columns AS col");
    const Outcome unread =
        runAt(blind.port(), words({"Item", "--column", "id", "--set", "type=bigint", "--apply"}));
    EXPECT_EQ(unread.status, 1);
    EXPECT_TRUE(unread.errors.contains("syz.columns")) << unread.errors.toStdString();

    const QByteArray before = scriptOf("dbo.Item");
    HostileServerRelay keyless(port(), HostileServerRelay::Fault::None, 0);
    keyless.replaceInBatches(u"sys.key_constraints AS k ON", u"syz.key_constraints AS k ON");
    const Outcome withoutKey =
        runAt(keyless.port(), words({"Item", "--column", "id", "--set", "primary=true", "--apply"}));
    EXPECT_EQ(withoutKey.status, 1);
    EXPECT_TRUE(withoutKey.errors.contains("syz.key_constraints")) << withoutKey.errors.toStdString();
    EXPECT_EQ(scriptOf("dbo.Item"), before);

    HostileServerRelay refusing(port(), HostileServerRelay::Fault::None, 0);
    refusing.replaceInBatches(u"ALTER COLUMN id", u"ALTER COLUMN iq");
    const Outcome refused =
        runAt(refusing.port(), words({"Item", "--column", "id", "--set", "type=bigint", "--apply"}));
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.errors.contains("'iq'")) << refused.errors.toStdString();
    EXPECT_EQ(scriptOf("dbo.Item"), before);
}

TEST_F(DesignCommand, SucceedsOnlyIfTheTableIsChangedWhereverTheConnectionIsLost)
{
    const QStringList arguments = words({"Item", "--column", "id", "--set", "primary=true", "--apply"});
    const QByteArray before = scriptOf("dbo.Item");
    std::uint64_t whole = 0;
    {
        const HostileServerRelay relay(port(), HostileServerRelay::Fault::None, 0);
        EXPECT_EQ(runAt(relay.port(), arguments).status, 0);
        whole = relay.bytesFromServer();
    }
    const QByteArray after = scriptOf("dbo.Item");
    EXPECT_NE(after, before);
    apply({"Item", "--column", "id", "--set", "primary=false"});
    EXPECT_EQ(scriptOf("dbo.Item"), before);
    int failures = 0;
    for (std::uint64_t at = 50; at < whole; at += whole / 12) {
        const HostileServerRelay relay(port(), HostileServerRelay::Fault::Reset, at);
        const Outcome outcome = runAt(relay.port(), arguments);
        // A lost connection that had changed nothing is replaced once.
        EXPECT_TRUE(outcome.status == 0 || outcome.status == 1 || outcome.status == 3) << outcome.status;
        EXPECT_FALSE(outcome.errors.isEmpty()) << at;
        const QByteArray now = scriptOf("dbo.Item");
        EXPECT_TRUE(now == after || (outcome.status != 0 && now == before)) << at << ": " << outcome.status;
        failures += outcome.status != 0 ? 1 : 0;
        if (now == after)
            apply({"Item", "--column", "id", "--set", "primary=false"});
    }
    EXPECT_GE(failures, 6);
}

TEST_F(DesignCommand, EndsWithStatus3WithoutAConnection)
{
    const Outcome outcome = Program({q("design"), q("--server"), q("127.0.0.1,1"), q("--user"), q("sa"),
                                     q("Item"), q("--column"), q("id"), q("--drop")})
                                .wait();
    EXPECT_EQ(outcome.status, 3);
    EXPECT_FALSE(outcome.errors.isEmpty());
}

TEST_F(DesignCommand, TellsInItsHelpHowADefaultIsRemoved)
{
    const Outcome outcome = Program({q("design"), q("--help")}).wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.simplified().contains("(default= removes the default)"))
        << outcome.output.toStdString();
}
