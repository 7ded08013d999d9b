#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/KNQueryLoader.h"
#include "SQL/SQLMetadataTokenizer.h"
#include "Support/TreeTesting.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <set>

using TreeTesting::list;
using TreeTesting::Ptr;
using namespace WireTest;

namespace {

/// T-SQL as its documentation writes delimited identifiers; nothing of the product is used.
QString bracketed(QString name)
{
    return QLatin1Char('[') + name.replace(QLatin1Char(']'), QLatin1String("]]")) + QLatin1Char(']');
}

QString literal(QString text)
{
    return QLatin1String("N'") + text.replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
}

QStringList hostileNames()
{
    return list({
               "a]; DROP TABLE dbo.victim; --",
               "[x]",
               "x]y",
               "a[b",
               "it's",
               "say \"hi\"",
               "\"q\"",
               "dbo.victim",
               "a.b.c",
               "my thing",
               " lead",
               "line\nDROP TABLE dbo.victim\n--",
               "cr\rDROP TABLE dbo.victim --",
               "ls\u2028DROP TABLE dbo.victim --",
               "x\r\nGO\r\nDROP TABLE dbo.victim\r\nGO\r\n--",
               "--",
               "/*",
               "*/ DROP TABLE dbo.victim /*",
               "GO",
               "select",
               "\xF0\x9F\x8E\x81 gift",
               "2019sales",
               "Größe",
               "x FROM int; DROP TABLE dbo.victim; --",
               "'); DROP TABLE dbo.victim; --",
               "` ; DROP TABLE dbo.victim; --",
               "{TABLE_NAME}%@",
           }) +
           QStringList{QString(127, QLatin1Char('n')) + QLatin1Char(']')};
}

/// Receives a script; kept until it has arrived.
class Keeper : public KNQueryLoaderDelegate
{
public:
    void queryLoaderLoadedQuery(KNQueryLoader &, const QString &query) override { text = query; }

    QString text;
};

struct Script
{
    QString title;
    KNQueryLoaderPtr loader;
    QString runsAtOnce; ///< the text of an item that runs it
};

/// Every script and statement of a menu, each once.
void collect(const KNMenu &menu, const QString &path, QList<Script> *scripts)
{
    for (const KNMenuItem &item : menu.items) {
        const QString title = path + QLatin1Char('/') + item.title;
        if (item.submenu)
            collect(*item.submenu, title, scripts);
        else if (const auto *loader = std::get_if<KNQueryLoaderPtr>(&item.representedObject))
            scripts->append({title, *loader, {}});
        else if (item.action == QLatin1String("executeQueryTab:"))
            scripts->append({title, nullptr, std::get<QString>(item.representedObject)});
    }
}

class HostileNames : public testing::Test
{
protected:
    HostileNames()
        : client(connectedClient(settings(m_server.port())))
    {
        KNDispatch::pumpMainQueue(0); // this is the main thread
        run(*client, QStringLiteral("CREATE DATABASE hostile"));
        run(*client, QStringLiteral("USE hostile"));
        run(*client, QStringLiteral("CREATE TABLE dbo.victim (a int)"));
        const auto details = settings(m_server.port());
        m_root = details->createRootDatabaseTreeNode();
        m_root->setDelegate(m_delegate);
    }
    ~HostileNames() override
    {
        EXPECT_TRUE(TreeTesting::settle());
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }

    /// Runs a statement of the test's own, which must succeed.
    void make(const QString &sql)
    {
        KNError error;
        client->executeNonQuery(sql, &error);
        EXPECT_FALSE(error) << sql.toStdString() << ": " << error.localizedDescription().toStdString();
    }

    qint64 count(const QString &name, const char *schema)
    {
        return scalar(*client, KNFormat("SELECT COUNT(*) FROM sys.objects WHERE name = %@ AND SCHEMA_NAME("
                                        "schema_id) = '%s'",
                                        literal(name), schema))
            .toInt64();
    }

    void expectVictim(const QString &after)
    {
        ASSERT_EQ(scalar(*client, QStringLiteral("SELECT COUNT(*) FROM sys.objects WHERE name = 'victim' AND "
                                                 "SCHEMA_NAME(schema_id) = 'dbo'"))
                      .toInt64(),
                  1)
            << after.toStdString();
    }

    QString textOf(const Script &script, const Ptr &entry, KNQueryReport *report = nullptr)
    {
        if (!script.loader)
            return script.runsAtOnce;
        const auto keeper = std::make_shared<Keeper>();
        script.loader->setDelegate(keeper);
        script.loader->beginLoadingQuery(*entry->databaseConnectionDetails());
        EXPECT_TRUE(TreeTesting::settle());
        if (report)
            *report = script.loader->report();
        return script.loader->report().guardedText(keeper->text);
    }

    Script item(const Ptr &entry, const char *ending)
    {
        QList<Script> scripts;
        collect(entry->menu(), {}, &scripts);
        for (const Script &script : std::as_const(scripts)) {
            if (script.title.contains(QString::fromUtf8(ending)))
                return script;
        }
        ADD_FAILURE() << "no " << ending;
        return {};
    }

    /// Runs every script of an entry, the destructive ones, too.
    void runAll(const Ptr &entry)
    {
        QList<Script> scripts;
        collect(entry->menu(), {}, &scripts);
        EXPECT_FALSE(scripts.isEmpty());
        for (const Script &script : std::as_const(scripts)) {
            const QString text = textOf(script, entry);
            if (script.title.contains(QLatin1String("MySQL"))) {
                expectOnlyInsideOfQuotes(text);
                continue;
            }
            const KNError error = runScript(*client, text);
            EXPECT_FALSE(error && !script.loader)
                << text.toStdString() << error.localizedDescription().toStdString();
            expectVictim(entry->displayName() + script.title + text);
        }
    }

    /// MySQL text: the name stands in backticks and comments only.
    void expectOnlyInsideOfQuotes(const QString &script)
    {
        QString rest;
        char16_t quote = 0;
        for (qsizetype i = 0; i < script.size(); ++i) {
            const char16_t c = script[i].unicode();
            if (quote == 0 && c == u'-' && script.mid(i, 3) == QLatin1String("-- ")) {
                while (i < script.size() && script[i] != QLatin1Char('\n'))
                    ++i;
            } else if (quote == 0) {
                rest += script[i];
                quote = c == u'`' || c == u'\'' ? c : 0;
            } else if (c == quote) {
                quote = 0; // a doubled one opens again at once
            }
        }
        EXPECT_FALSE(rest.contains(QLatin1String("victim"))) << script.toStdString();
        EXPECT_TRUE(rest.startsWith(QLatin1String("DROP TABLE IF EXISTS `"))) << script.toStdString();
    }

    /// Drops the object by its script and makes it again by the one that was written before, then both at
    /// once.
    void dropAndMake(const Ptr &entry, const QString &name, const char *schema, const char *drop)
    {
        ASSERT_EQ(count(name, schema), 1) << name.toStdString();
        const QString create = textOf(item(entry, "Script as/CREATE to"), entry);
        const QString dropping = textOf(item(entry, drop), entry);
        KNError error = runScript(*client, dropping);
        EXPECT_FALSE(error) << dropping.toStdString() << error.localizedDescription().toStdString();
        EXPECT_EQ(count(name, schema), 0) << dropping.toStdString();
        error = runScript(*client, create);
        EXPECT_FALSE(error) << create.toStdString() << error.localizedDescription().toStdString();
        EXPECT_EQ(count(name, schema), 1) << create.toStdString();
        const QString both = textOf(item(entry, "Script as/DROP and CREATE to"), entry);
        error = runScript(*client, both);
        EXPECT_FALSE(error) << both.toStdString() << error.localizedDescription().toStdString();
        EXPECT_EQ(count(name, schema), 1) << both.toStdString();
        expectVictim(both);
    }

    /// The children at a path of the database, loaded anew.
    KNDatabaseTreeEntry::List children(std::initializer_list<const char *> path)
    {
        const Ptr section = TreeTesting::find(m_root, list({"hostile"}) + list(path));
        TreeTesting::load(section, true);
        return *section->childEntries();
    }

    /// Makes an object for each name by the statement, "{}" being the name in brackets.
    void makeAll(const char *schema, const char *statement)
    {
        if (QLatin1String(schema) != QLatin1String("dbo"))
            make(KNFormat("CREATE SCHEMA %s", schema));
        for (const QString &name : hostileNames())
            make(QString::fromUtf8(statement).replace(QLatin1String("{}"), bracketed(name)));
    }

    /// Runs everything of each entry of a schema; `drop` is the script that drops it.
    void expectHarmless(std::initializer_list<const char *> path, const char *schema, const char *drop)
    {
        const QString prefix = QString::fromUtf8(schema) + QLatin1Char('.');
        QStringList seen;
        for (const Ptr &entry : children(path)) {
            const QString name = entry->displayName().mid(prefix.size());
            if (!entry->displayName().startsWith(prefix))
                continue;
            seen.append(name);
            dropAndMake(entry, name, schema, drop);
            runAll(entry);
        }
        QStringList expected = hostileNames();
        expected.sort();
        seen.sort();
        EXPECT_EQ(seen, expected);
    }

private:
    const SampleServerFixture m_server;

protected:
    const std::unique_ptr<MSSQLClient> client;

private:
    const std::shared_ptr<RecordingTreeDelegate> m_delegate = std::make_shared<RecordingTreeDelegate>();
    std::shared_ptr<DatabaseTreeEntryServerRoot> m_root;
};

} // namespace

TEST_F(HostileNames, OfTablesActOnTheTable)
{
    makeAll("t", "CREATE TABLE t.{} (a int NOT NULL, {} nvarchar(10) NULL, [d] datetime NULL)");
    for (const QString &name : hostileNames())
        make(KNFormat("INSERT INTO t.%@ (a, %@) VALUES (1, N'v')", bracketed(name), bracketed(name)));
    for (const Ptr &entry : children({"Tables"})) {
        const QString name = entry->displayName().mid(2);
        if (!entry->displayName().startsWith(QLatin1String("t.")))
            continue;
        const QString select = textOf(item(entry, "Select top 100 rows"), entry);
        EXPECT_EQ(scalar(*client, select).toInt64(), 1) << select.toStdString();
        const QString create = textOf(item(entry, "Script as/CREATE to"), entry);
        runAll(entry);
        // The script that drops a table is that of a view, which the server refuses: both at once only.
        EXPECT_EQ(count(name, "t"), 1) << create.toStdString();
        EXPECT_EQ(scalar(*client, KNFormat("SELECT COUNT(*) FROM t.%@", bracketed(name))).toInt64(), 0)
            << "the table was not made anew: " << create.toStdString();
    }
}

TEST_F(HostileNames, OfViewsActOnTheView)
{
    makeAll("v", "CREATE VIEW v.{} AS SELECT 1 AS a");
    expectHarmless({"Views"}, "v", "Script as/DROP to");
}

TEST_F(HostileNames, OfProceduresActOnTheProcedure)
{
    makeAll("dbo", "CREATE PROCEDURE dbo.{} AS SELECT 1 AS a");
    expectHarmless({"Programmability", "Stored Procedures"}, "dbo", "Script as/DROP to");
}

TEST_F(HostileNames, OfFunctionsActOnTheFunction)
{
    makeAll("f", "CREATE FUNCTION f.{}() RETURNS int AS BEGIN RETURN 1 END");
    expectHarmless({"Programmability", "Functions", "Scalar-valued Functions"}, "f", "Script as/DROP to");
}

TEST_F(HostileNames, OfTypesActOnTheType)
{
    makeAll("y", "CREATE TYPE y.{} FROM nvarchar(12) NULL");
    const auto count = [this](const QString &name) {
        return scalar(*client, QLatin1String("SELECT COUNT(*) FROM sys.types WHERE name = ") + literal(name))
            .toInt64();
    };
    int types = 0;
    for (const Ptr &entry : children({"Programmability", "Types", "User-Defined Data Types"})) {
        ++types;
        const QString name = entry->displayName().mid(2);
        const QString both = textOf(item(entry, "Script as/DROP and CREATE to"), entry);
        const KNError error = runScript(*client, both);
        EXPECT_FALSE(error) << both.toStdString() << error.localizedDescription().toStdString();
        EXPECT_EQ(count(name), 1) << both.toStdString();
        runAll(entry); // when it comes to both again, the type is dropped already
        EXPECT_EQ(count(name), 0) << both.toStdString();
    }
    EXPECT_EQ(types, hostileNames().size());
}

TEST_F(HostileNames, OfTriggersActOnTheTrigger)
{
    make(QStringLiteral("CREATE TABLE dbo.watched (a int)"));
    makeAll("r", "CREATE TRIGGER {} ON dbo.watched AFTER INSERT AS SELECT 1 AS a");
    int triggers = 0;
    for (const Ptr &entry : children({"Tables", "watched", "Triggers"})) {
        ++triggers;
        dropAndMake(entry, entry->displayName(), "dbo", "Script as/DROP to");
        runAll(entry);
    }
    EXPECT_EQ(triggers, hostileNames().size());
}

TEST_F(HostileNames, OfEncryptedModulesStayInTheirComments)
{
    make(QStringLiteral("CREATE TABLE dbo.watched (a int)"));
    for (const char *schema : {"v", "p", "f"})
        make(KNFormat("CREATE SCHEMA %s", schema));
    for (const QString &name : hostileNames()) {
        make(KNFormat("CREATE VIEW v.%@ WITH ENCRYPTION AS SELECT 1 AS a", bracketed(name)));
        make(KNFormat("CREATE PROCEDURE p.%@ WITH ENCRYPTION AS SELECT 1", bracketed(name)));
        make(KNFormat("CREATE FUNCTION f.%@() RETURNS int WITH ENCRYPTION AS BEGIN RETURN 1 END",
                      bracketed(name)));
        make(KNFormat("CREATE TRIGGER %@ ON dbo.watched WITH ENCRYPTION AFTER INSERT AS SELECT 1",
                      bracketed(name)));
    }
    qsizetype entries = 0;
    for (const auto &section : {children({"Views"}), children({"Programmability", "Stored Procedures"}),
                                children({"Programmability", "Functions", "Scalar-valued Functions"}),
                                children({"Tables", "watched", "Triggers"})}) {
        for (const Ptr &entry : section) {
            ++entries;
            KNQueryReport report;
            textOf(item(entry, "Script as/CREATE to"), entry, &report);
            EXPECT_TRUE(report.failure) << entry->displayName().toStdString();
            runAll(entry);
        }
    }
    EXPECT_EQ(entries, 4 * hostileNames().size());
}

TEST_F(HostileNames, OfSchemasActOnTheirTable)
{
    for (const QString &name : hostileNames()) {
        make(QLatin1String("CREATE SCHEMA ") + bracketed(name));
        make(KNFormat("CREATE TABLE %@.t (a int)", bracketed(name)));
    }
    int tables = 0;
    for (const Ptr &entry : children({"Tables"})) {
        if (!entry->displayName().endsWith(QLatin1String(".t")))
            continue;
        ++tables;
        runAll(entry);
    }
    EXPECT_EQ(tables, hostileNames().size());
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT COUNT(*) FROM sys.tables WHERE name = 't'")).toInt64(),
              tables);
}
