#include "Catalog/MSSQLForeignKeyEntry.h"
#include "Database/KNStatementRun.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Support/HostileServerRelay.h"
#include "TableDesign/MSSQLForeignKeyScript.h"
#include "TableDesign/MSSQLTableDesign.h"
#include "VantorMSSQL/Scripts/ScriptTest.h"
#include "VantorMSSQL/Wire/WireTest.h"

namespace {

using EditKind = KNColumnEdit::Kind;
using EditProperty = KNColumnEdit::Property;

const QString Injected = QStringLiteral("RAISERROR (N'injected', 16, 1)");

/// A table with a key, a default, an index and a foreign key, whose changes are made to fail.
class DesignFailure : public testing::Test
{
protected:
    DesignFailure()
        : m_settings(WireTest::settings(m_server.port()))
    {
        m_client = WireTest::connectedClient(m_settings);
        execute("CREATE DATABASE failing");
        m_settings->setDatabase(QStringLiteral("failing"));
        m_settings->setConnectionId(KNFormat("design-failure-%@", QString::number(m_server.port())));
        m_client = WireTest::connectedClient(m_settings);
        execute("CREATE SCHEMA des");
        execute("CREATE TABLE des.Part (id int NOT NULL PRIMARY KEY)");
        execute("INSERT INTO des.Part VALUES (1)");
        makeTable();
        m_before = script();
    }
    ~DesignFailure() override { VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients(); }

    void execute(const char *sql)
    {
        KNError error;
        m_client->executeNonQuery(QString::fromUtf8(sql), &error);
        EXPECT_FALSE(error) << sql << ": " << error.localizedDescription().toStdString();
    }
    void makeTable()
    {
        execute("CREATE TABLE des.Item (id int NOT NULL, part int NOT NULL, name nvarchar(20) NOT NULL, "
                "amount int NOT NULL CONSTRAINT DF_amount DEFAULT 1, "
                "CONSTRAINT PK_Item PRIMARY KEY NONCLUSTERED (id DESC, part), "
                "CONSTRAINT FK_Item FOREIGN KEY (part) REFERENCES des.Part (id))");
        execute("INSERT INTO des.Item (id, part, name) VALUES (1, 1, N'one'), (2, 1, N'one')");
    }
    QString script() const
    {
        return ScriptTest::textOf(std::make_shared<MSSQLScriptCreateTableQueryLoader>(QStringLiteral("Item"),
                                                                                      QStringLiteral("des")),
                                  *m_settings);
    }
    QString scriptFor(const char *column, EditProperty property, const QVariant &value, bool corrected = true)
    {
        return scriptFor({EditKind::Change, QString::fromUtf8(column), {{property, value}}}, corrected);
    }
    QString scriptFor(const KNColumnEdit &edit, bool corrected = true)
    {
        KNError error;
        MSSQLTableDesign design(m_table, m_settings);
        const QList<KNDesignStep> steps = design.steps(edit, corrected, &error);
        EXPECT_EQ(steps.size(), 1) << error.localizedDescription().toStdString();
        return steps.value(0).script;
    }
    void expectNothingHasChanged(const char *when)
    {
        EXPECT_EQ(script(), m_before) << when;
        EXPECT_EQ(WireTest::scalar(*m_client, QStringLiteral("SELECT @@TRANCOUNT")).toInt64(), 0) << when;
    }
    /// Runs a script, which the server must refuse with this text.
    void expectRefused(const QString &sql, const char *text)
    {
        const KNError failure = WireTest::runScript(*m_client, sql);
        EXPECT_TRUE(failure.localizedDescription().contains(QString::fromUtf8(text)))
            << failure.localizedDescription().toStdString();
        expectNothingHasChanged(text);
    }
    /// The script with an error raised behind each of its lines between `head` and `tail`, one by one.
    static QStringList withFailures(const QString &sql, const QString &head, const QString &tail)
    {
        QStringList variants;
        const qsizetype end = tail.isEmpty() ? sql.size() : sql.indexOf(tail);
        for (qsizetype at = sql.indexOf(head) + head.size(); at >= 0 && at <= end;) {
            variants.append(sql.left(at) + QLatin1Char('\n') + Injected + QLatin1Char('\n') + sql.mid(at));
            const qsizetype next = sql.indexOf(QLatin1Char('\n'), at);
            at = next < 0 ? end + 1 : next + 1;
        }
        return variants;
    }
    /// Makes the wrapped script fail behind each of its statements. An error inside of a statement is one of
    /// syntax and runs nothing; one that an IF skips is none.
    void failBehindEachStatement(const QString &sql, int atLeast)
    {
        const QStringList variants =
            withFailures(sql, QStringLiteral("BEGIN TRANSACTION\r\n"), QStringLiteral("\r\nCOMMIT TRAN"));
        int failures = 0;
        for (const QString &variant : variants) {
            const KNError failure = WireTest::runScript(*m_client, variant);
            if (!failure) {
                execute("DROP TABLE des.Item");
                makeTable();
                continue;
            }
            if (!failure.localizedDescription().contains(QLatin1String("injected")))
                continue;
            ++failures;
            expectNothingHasChanged(qPrintable(variant));
        }
        EXPECT_GE(failures, atLeast);
        expectNothingHasChanged("in the end");
    }

    const SampleServerFixture m_server;
    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings;
    const MSSQLDesignedTable m_table{QStringLiteral("des"), QStringLiteral("Item")};
    std::unique_ptr<MSSQLClient> m_client;
    QString m_before;
};

} // namespace

TEST_F(DesignFailure, BehindEachStatementOfAKeyChangeKeepsTheTable)
{
    for (const bool corrected : {false, true}) {
        failBehindEachStatement(scriptFor("amount", EditProperty::Primary, true, corrected), 4);
        failBehindEachStatement(scriptFor("id", EditProperty::Primary, false, corrected), 4);
    }
}

TEST_F(DesignFailure, BehindEachStatementOfADefaultChangeKeepsTheTable)
{
    for (const bool corrected : {false, true}) {
        failBehindEachStatement(scriptFor("amount", EditProperty::Default, QStringLiteral("'7'"), corrected),
                                4);
        failBehindEachStatement(scriptFor("amount", EditProperty::Default, QStringLiteral(""), corrected), 4);
    }
}

TEST_F(DesignFailure, BehindANameOrTypeChangeKeepsTheTable)
{
    for (const bool corrected : {false, true}) {
        failBehindEachStatement(scriptFor("name", EditProperty::Name, QStringLiteral("title"), corrected), 2);
        failBehindEachStatement(scriptFor("amount", EditProperty::Type, QStringLiteral("bigint"), corrected),
                                2);
        failBehindEachStatement(scriptFor("name", EditProperty::Nullable, true, corrected), 2);
    }
}

TEST_F(DesignFailure, BehindEachStatementOfAForeignKeyChangeKeepsTheTable)
{
    MSSQLForeignKeyEntry key;
    key.keyName = QStringLiteral("FK_Item");
    key.targetTableSchema = QStringLiteral("des");
    key.targetTable = QStringLiteral("Part");
    key.localColumns = {QStringLiteral("part")};
    key.targetColumns = {QStringLiteral("id")};
    MSSQLForeignKeyEntry changed = key;
    changed.deleteRule = 1;
    changed.isEnabled = false;
    const QString sql = MSSQLForeignKeyScript::change(m_table, key, changed);
    int failures = 0;
    for (const QString &variant : withFailures(sql, QString(), QString())) {
        const KNStatementOutcome outcome = KNStatementRun::run({variant, true, QString()}, *m_client);
        EXPECT_EQ(outcome.changes, KNStatementOutcome::Changes::None);
        failures += outcome.error.localizedDescription().contains(QLatin1String("injected")) ? 1 : 0;
        expectNothingHasChanged(qPrintable(variant));
    }
    EXPECT_EQ(failures, 3) << "before the drop, the creation and the disabling";
}

TEST_F(DesignFailure, OfTheServersOwnKeepsTheTable)
{
    expectRefused(scriptFor("id", EditProperty::Primary, false), "duplicate key");
    expectRefused(scriptFor("amount", EditProperty::Default, QStringLiteral("no such(")), "no");
    expectRefused(scriptFor("name", EditProperty::Type, QStringLiteral("nvarchar(2)")), "truncated");
    expectRefused(scriptFor("name", EditProperty::Type, QStringLiteral("int")), "Conversion failed");
    expectRefused(scriptFor("amount", EditProperty::Name, QStringLiteral("name")), "name");
    expectRefused(scriptFor({EditKind::Drop, QStringLiteral("part"), {}}), "part");
    expectRefused(scriptFor({EditKind::Drop, QStringLiteral("amount"), {}}), "amount");
}

TEST_F(DesignFailure, OfTheConnectionLeavesTheTableAsItWasOrAsItWasMeant)
{
    const QString there = scriptFor("amount", EditProperty::Primary, true);
    EXPECT_FALSE(WireTest::runScript(*m_client, there));
    const QString after = script();
    const QString back = scriptFor("amount", EditProperty::Primary, false);
    EXPECT_FALSE(WireTest::runScript(*m_client, back));
    EXPECT_EQ(script(), m_before);
    ASSERT_NE(after, m_before);

    HostileServerRelay relay(m_server.port(), HostileServerRelay::Fault::Reset, 1'000'000);
    const auto throughRelay = WireTest::settings(relay.port());
    throughRelay->setDatabase(QStringLiteral("failing"));
    for (std::uint64_t offset = 0; offset < 12; ++offset) {
        relay.strikeAfter(1'000'000);
        const std::uint64_t earlier = relay.bytesFromServer();
        const auto client = WireTest::connectedClient(throughRelay);
        relay.strikeAfter(relay.bytesFromServer() - earlier + offset);
        const KNError failure = WireTest::runScript(*client, there);
        EXPECT_TRUE(failure) << offset;
        const QString now = script();
        EXPECT_TRUE(now == m_before || now == after) << offset << now.toStdString();
        if (now == after) {
            EXPECT_FALSE(WireTest::runScript(*m_client, back));
        }
    }
}
