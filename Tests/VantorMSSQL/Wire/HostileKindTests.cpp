#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/KNQueryLoader.h"
#include "Scripts/MSSQLScriptDropColumnInTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropIndexQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "Support/TreeTesting.h"
#include "VantorMSSQL/Wire/WireTest.h"

using TreeTesting::list;
using TreeTesting::Ptr;
using namespace WireTest;

namespace {

/// T-SQL as its documentation writes delimited identifiers; nothing of the product is used.
QString inBrackets(QString name)
{
    return QLatin1Char('[') + name.replace(QLatin1Char(']'), QLatin1String("]]")) + QLatin1Char(']');
}

QString inQuotes(QString text)
{
    return QLatin1String("N'") + text.replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
}

/// Names of everything but tables and modules, of which the sample server has none that begin with "@" or
/// "#".
QStringList sortedNames()
{
    QStringList names =
        list({"a]; DROP TABLE dbo.victim; --", "x]y", "it's", "say \"hi\"", "dbo.victim", "a.b.c",
              "x\r\nGO\r\nDROP TABLE dbo.victim\r\nGO\r\n--", "*/ DROP TABLE dbo.victim /*", "#hash",
              "##twice", "#a]; DROP TABLE dbo.victim; --", "@at", "@@rowcount",
              "@a]; DROP TABLE dbo.victim; --"}) +
        QStringList(QString(127, QLatin1Char('n')) + QLatin1Char(']'));
    names.sort();
    return names;
}

class Receiver : public KNQueryLoaderDelegate
{
public:
    void queryLoaderLoadedQuery(KNQueryLoader &, const QString &query) override { text = query; }

    QString text;
};

class HostileKinds : public testing::Test
{
protected:
    HostileKinds()
        : client(connectedClient(settings(m_server.port())))
    {
        KNDispatch::pumpMainQueue(0); // this is the main thread
        make(QStringLiteral("CREATE DATABASE hostile"));
        make(QStringLiteral("USE hostile"));
        make(QStringLiteral("CREATE TABLE dbo.victim (a int)"));
        root = settings(m_server.port())->createRootDatabaseTreeNode();
        root->setDelegate(m_delegate);
    }
    ~HostileKinds() override
    {
        EXPECT_TRUE(TreeTesting::settle());
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }

    void make(const QString &sql)
    {
        KNError error;
        client->executeNonQuery(sql, &error);
        EXPECT_FALSE(error) << sql.toStdString() << ": " << error.localizedDescription().toStdString();
    }
    qint64 count(const QString &sql)
    {
        return scalar(*client, QLatin1String("SELECT COUNT(*) FROM ") + sql).toInt64();
    }
    void expectVictim(const QString &after)
    {
        ASSERT_EQ(count(QStringLiteral("hostile.sys.objects WHERE name = 'victim'")), 1)
            << after.toStdString();
    }
    KNDatabaseTreeEntry::List children(const QStringList &path)
    {
        const Ptr section = TreeTesting::find(root, path);
        TreeTesting::load(section, true);
        return *section->childEntries();
    }
    static QStringList sortedNamesOf(const KNDatabaseTreeEntry::List &entries)
    {
        QStringList names;
        for (const Ptr &entry : entries)
            names.append(entry->displayName());
        names.sort();
        return names;
    }
    static QString textOf(KNQueryLoader &loader, const VantorDBC &details)
    {
        const auto receiver = std::make_shared<Receiver>();
        loader.setDelegate(receiver);
        loader.beginLoadingQuery(details);
        EXPECT_TRUE(TreeTesting::settle());
        return loader.report().guardedText(receiver->text);
    }
    /// Every script of a menu with its title, those of submenus, too.
    static void collect(const KNMenu &menu, const QString &path,
                        QList<QPair<QString, KNQueryLoaderPtr>> *scripts)
    {
        for (const KNMenuItem &item : menu.items) {
            const QString title = path + QLatin1Char('/') + item.title;
            if (item.submenu)
                collect(*item.submenu, title, scripts);
            else if (const auto *loader = std::get_if<KNQueryLoaderPtr>(&item.representedObject))
                scripts->append({title, *loader});
        }
    }
    QString script(const Ptr &entry, const char *title)
    {
        QList<QPair<QString, KNQueryLoaderPtr>> scripts;
        collect(entry->menu(), {}, &scripts);
        for (const auto &[path, loader] : std::as_const(scripts)) {
            if (path.contains(QLatin1String(title)))
                return textOf(*loader, *entry->databaseConnectionDetails());
        }
        ADD_FAILURE() << "no " << title;
        return {};
    }
    void expectRuns(const QString &text)
    {
        const KNError error = runScript(*client, text);
        EXPECT_FALSE(error) << text.toStdString() << error.localizedDescription().toStdString();
        expectVictim(text);
    }

    const SampleServerFixture m_server;
    const std::unique_ptr<MSSQLClient> client;
    const std::shared_ptr<RecordingTreeDelegate> m_delegate = std::make_shared<RecordingTreeDelegate>();
    std::shared_ptr<DatabaseTreeEntryServerRoot> root;
};

} // namespace

TEST_F(HostileKinds, OfIndexesAreDroppedOneByOne)
{
    make(QStringLiteral("CREATE TABLE dbo.[it's] (a int)"));
    for (const QString &name : sortedNames())
        make(KNFormat("CREATE INDEX %@ ON dbo.[it's] (a)", inBrackets(name)));
    const auto indexes = children(list({"hostile", "Tables", "it's", "Indexes"}));
    EXPECT_EQ(sortedNamesOf(indexes), sortedNames());
    qint64 left = sortedNames().size();
    for (const Ptr &index : indexes) {
        const MSSQLScriptSubject subject{
            QStringLiteral("INDEX"), QStringLiteral("dbo"), index->displayName(), {}, QStringLiteral("it's")};
        const KNQueryLoaderPtr loader =
            subject.script<MSSQLScriptDropIndexQueryLoader>(subject.name, subject.table, subject.schema);
        expectRuns(textOf(*loader, *index->databaseConnectionDetails()));
        EXPECT_EQ(count(QLatin1String("sys.indexes WHERE name = ") + inQuotes(index->displayName())), 0);
        EXPECT_EQ(count(QStringLiteral(
                      "sys.indexes WHERE object_id = OBJECT_ID(N'dbo.[it''s]') AND name IS NOT NULL")),
                  --left);
    }
}

TEST_F(HostileKinds, OfColumnsAreDroppedOneByOne)
{
    QString columns = QStringLiteral("a int");
    for (const QString &name : sortedNames())
        columns += KNFormat(", %@ int", inBrackets(name));
    make(KNFormat("CREATE TABLE dbo.t (%@)", columns));
    const auto entries = children(list({"hostile", "Tables", "t", "Columns"}));
    EXPECT_EQ(entries.size(), static_cast<std::size_t>(sortedNames().size() + 1));
    qint64 left = sortedNames().size() + 1;
    for (const QString &name : sortedNames()) {
        const MSSQLScriptSubject subject{
            QStringLiteral("COLUMN"), QStringLiteral("dbo"), name, {}, QStringLiteral("t")};
        const KNQueryLoaderPtr loader = subject.script<MSSQLScriptDropColumnInTableQueryLoader>(
            subject.name, subject.table, subject.schema);
        expectRuns(textOf(*loader, *entries.front()->databaseConnectionDetails()));
        EXPECT_EQ(count(QStringLiteral("sys.columns WHERE object_id = OBJECT_ID(N'dbo.t')")), --left);
    }
}

TEST_F(HostileKinds, OfConstraintsComeBackWithTheirTable)
{
    make(QStringLiteral("CREATE TABLE dbo.parent (a int PRIMARY KEY)"));
    int number = 0;
    for (const QString &name : sortedNames()) {
        const QString table = QStringLiteral("t%1").arg(++number);
        const QString foreign = QLatin1Char('f') + name.left(120);
        make(KNFormat("CREATE TABLE dbo.%@ (a int NOT NULL, CONSTRAINT %@ PRIMARY KEY (a), CONSTRAINT %@ "
                      "FOREIGN KEY (a) "
                      "REFERENCES dbo.parent (a))",
                      table, inBrackets(name), inBrackets(foreign)));
        const Ptr entry = TreeTesting::find(root, list({"hostile", "Tables"}));
        TreeTesting::load(entry, true);
        const auto keys =
            children(QStringList(list({"hostile", "Tables"})) + QStringList{table} + list({"Keys"}));
        EXPECT_TRUE(sortedNamesOf(keys).contains(name)) << name.toStdString();
        expectRuns(script(TreeTesting::find(entry, {table}), "Script as/DROP and CREATE to"));
        EXPECT_EQ(count(QLatin1String("sys.key_constraints WHERE name = ") + inQuotes(name)), 1)
            << name.toStdString();
        EXPECT_EQ(count(QLatin1String("sys.foreign_keys WHERE name = ") + inQuotes(foreign)), 1)
            << name.toStdString();
    }
}

TEST_F(HostileKinds, OfDatabasesLeadToTheDatabase)
{
    for (const QString &name : sortedNames()) {
        make(QLatin1String("CREATE DATABASE ") + inBrackets(name));
        make(QLatin1String("USE ") + inBrackets(name));
        make(QStringLiteral("CREATE TABLE dbo.inside (a int)"));
    }
    for (const QString &name : sortedNames()) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(sortedNamesOf(children(QStringList{name} + list({"Tables"}))), list({"inside"}));
        const Ptr database = TreeTesting::find(root, {name});
        ASSERT_TRUE(database);
        KNError error;
        ASSERT_TRUE(client->changeDatabase(name, &error)) << error.localizedDescription().toStdString();
        EXPECT_EQ(client->currentDatabase(), name);
        QList<QPair<QString, KNQueryLoaderPtr>> scripts;
        collect(database->menu(), {}, &scripts);
        EXPECT_FALSE(scripts.isEmpty());
        for (const auto &[title, loader] : std::as_const(scripts)) {
            runScript(*client, textOf(*loader, *database->databaseConnectionDetails()));
            expectVictim(title);
        }
    }
    EXPECT_EQ(count(QStringLiteral("sys.databases")),
              7 + sortedNames().size()); // with the six that every one has
}

TEST_F(HostileKinds, OfSchemasThatBeginLikeVariablesOrTemporaryTablesLeadToTheirTable)
{
    const QStringList schemas =
        list({"@at", "@@rowcount", "#hash", "##twice", "#a]; DROP TABLE dbo.victim; --"});
    for (const QString &name : schemas) {
        make(QLatin1String("CREATE SCHEMA ") + inBrackets(name));
        make(KNFormat("CREATE TABLE %@.t (a int)", inBrackets(name)));
    }
    int tables = 0;
    for (const Ptr &table : children(list({"hostile", "Tables"}))) {
        if (!table->displayName().endsWith(QLatin1String(".t")))
            continue;
        ++tables;
        const QString path = inBrackets(table->displayName().chopped(2)) + QLatin1String(".t");
        make(KNFormat("INSERT INTO %@ VALUES (1)", path));
        const qint64 objects = count(QStringLiteral("sys.objects"));
        expectRuns(script(table, "Script as/DROP and CREATE to"));
        EXPECT_EQ(count(QStringLiteral("sys.objects")), objects);
        EXPECT_EQ(count(path), 0) << "the table was not made anew: " << path.toStdString();
    }
    EXPECT_EQ(tables, schemas.size());
}
