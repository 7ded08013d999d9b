#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNUserDefaults.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Support/TestText.h"
#include "TableDesign/MSSQLAlterIndexQueryLoader.h"
#include "VantorMSSQL/Scripts/ScriptTest.h"
#include "VantorMSSQL/Wire/WireTest.h"

namespace IndexChangeTests {

using namespace WireTest;

namespace {

/// A table with indexes on a server of its own, whose indexes are changed as the editor changes them.
class IndexChange : public testing::Test
{
protected:
    explicit IndexChange(const char *edition = "2022")
        : m_server({.arguments = {"--edition", edition}})
        , m_details(settings(m_server.port()))
        , m_client(connectedClient(settings(m_server.port())))
    {
        useCorrected(true);
        make("CREATE DATABASE indexes");
        make("USE indexes");
        m_details->setDatabase(q("indexes"));
        make("CREATE TABLE dbo.T (a int NOT NULL, b int NULL, c nvarchar(20) NULL, d int NULL, CONSTRAINT "
             "PK_T "
             "PRIMARY KEY NONCLUSTERED (a), CONSTRAINT UQ_T UNIQUE (b))");
    }
    ~IndexChange() override
    {
        KNUserDefaults::standardUserDefaults()->removeObject(MSSQLCorrectedStatements::Key);
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }

    static void useCorrected(bool isUsed)
    {
        KNUserDefaults::standardUserDefaults()->setObject(MSSQLCorrectedStatements::Key, isUsed);
    }
    void make(const QString &sql)
    {
        KNError error;
        m_client->executeNonQuery(sql, &error);
        EXPECT_FALSE(error) << sql.toStdString() << ": " << error.localizedDescription().toStdString();
    }
    void make(const char *sql) { make(q(sql)); }

    QList<MSSQLIndexEntry> indexes()
    {
        KNError error;
        auto list =
            MSSQLCatalogReader::records<MSSQLIndexEntry>(*m_details, q("dbo"), q("T"), "test", &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return list;
    }
    MSSQLIndexEntry index(const char *name)
    {
        for (const MSSQLIndexEntry &entry : indexes()) {
            if (entry.indexName == q(name))
                return entry;
        }
        ADD_FAILURE() << name << " is not listed";
        return {};
    }
    /// The lines of the table's script that name the index.
    QStringList scriptOf(const char *name)
    {
        const QString script =
            MSSQLScriptCreateTableQueryLoader::creationQueryForTable(q("T"), q("dbo"), *m_details);
        return script.split(q("\r\n")).filter(KNFormat("[%s]", name));
    }
    std::shared_ptr<ScriptTest::Receiver> load(const MSSQLIndexEntry &before, const MSSQLIndexEntry &after)
    {
        m_loader = std::make_shared<MSSQLAlterIndexQueryLoader>(MSSQLDesignedTable{q("dbo"), q("T")}, before,
                                                                after, before.indexName.isEmpty());
        return ScriptTest::Receiver::load(m_loader, *m_details);
    }
    /// Changes an index as the user does, and returns the statements.
    QString change(const MSSQLIndexEntry &before, const MSSQLIndexEntry &after)
    {
        QString statements = load(before, after)->texts().value(0);
        EXPECT_FALSE(m_loader->report().failure);
        make(statements);
        return statements;
    }

    const SampleServerFixture m_server;
    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_details;
    const std::unique_ptr<MSSQLClient> m_client;
    std::shared_ptr<MSSQLAlterIndexQueryLoader> m_loader;
};

class IndexChangeOn2000 : public IndexChange
{
protected:
    IndexChangeOn2000()
        : IndexChange("2000")
    {
    }
};

} // namespace

TEST_F(IndexChange, DiffersInTheScriptOnlyInWhatWasMeant)
{
    make("CREATE UNIQUE INDEX IX ON dbo.T (b DESC, c) INCLUDE (d) WHERE b > 0 "
         "WITH (PAD_INDEX = ON, FILLFACTOR = 80, IGNORE_DUP_KEY = ON)");
    make("ALTER INDEX IX ON dbo.T DISABLE");
    const QStringList before = scriptOf("IX");
    ASSERT_EQ(before.size(), 2);
    ASSERT_TRUE(before[0].contains(q("([b] DESC, [c] ASC) INCLUDE ([d]) WHERE"))) << before[0].toStdString();

    const MSSQLIndexEntry old = index("IX");
    MSSQLIndexEntry reordered = old;
    reordered.columns.swapItemsAt(0, 1);
    change(old, reordered);
    QStringList expected = before;
    expected[0].replace(q("([b] DESC, [c] ASC)"), q("([c] ASC, [b] DESC)"));
    EXPECT_EQ(scriptOf("IX"), expected);

    MSSQLIndexEntry renamed = old;
    renamed.indexName = q("IY");
    change(reordered, renamed);
    expected = before;
    for (QString &line : expected)
        line.replace(q("[IX]"), q("[IY]"));
    EXPECT_EQ(scriptOf("IY"), expected);
    EXPECT_TRUE(scriptOf("IX").isEmpty());
}

TEST_F(IndexChange, MakesAnIncludedColumnAKeyColumn)
{
    make("CREATE INDEX IX ON dbo.T (b DESC) INCLUDE (c, d) WITH (FILLFACTOR = 70)");
    const MSSQLIndexEntry old = index("IX");
    MSSQLIndexEntry wider = old;
    wider.columns.append({q("d")});
    wider.isUnique = true;
    change(old, wider);
    EXPECT_EQ(scriptOf("IX"),
              QStringList{q("CREATE UNIQUE NONCLUSTERED INDEX [IX] ON [dbo].[T] ([b] DESC, [d] ASC) "
                            "INCLUDE ([c]) WITH (FILLFACTOR = 70)")});
}

TEST_F(IndexChange, NamesWhatTheExactStatementsLose)
{
    useCorrected(false);
    make("CREATE INDEX IX ON dbo.T (b DESC) INCLUDE (d) WHERE b > 0");
    const MSSQLIndexEntry old = index("IX");
    MSSQLIndexEntry wider = old;
    wider.columns.append({q("c")});
    EXPECT_EQ(load(old, wider)->texts(),
              QStringList{q("DROP INDEX IX;\r\nCREATE NONCLUSTERED INDEX IX ON T  (b, c);")});
    EXPECT_EQ(m_loader->report().pair.difference,
              q("SQL Server does not accept DROP INDEX without the index's table. The index would lose: sort "
                "order, included columns, filter."));
}

TEST_F(IndexChange, SaysWhenNoStatementKeepsTheFilter)
{
    make("CREATE INDEX IX ON dbo.T (b) WHERE b > 0");
    const MSSQLIndexEntry old = index("IX");
    MSSQLIndexEntry clustered = old;
    clustered.isNonClustered = false;
    change(old, clustered);
    EXPECT_EQ(m_loader->report().notices, QStringList{q("The index would lose: filter.")});
    EXPECT_EQ(scriptOf("IX"), QStringList{q("CREATE CLUSTERED INDEX [IX] ON [dbo].[T] ([b] ASC)")});
}

TEST_F(IndexChange, HasNoTextForAnIndexThatIsGone)
{
    make("CREATE INDEX IX ON dbo.T (b)");
    const MSSQLIndexEntry old = index("IX");
    make("DROP INDEX IX ON dbo.T");
    MSSQLIndexEntry wider = old;
    wider.columns.append({q("c")});
    EXPECT_TRUE(load(old, wider)->texts().value(0).isNull());
    EXPECT_EQ(m_loader->report().failure.localizedDescription(),
              q("The index IX is not there any more, or may not be seen by this login."));
}

TEST_F(IndexChange, HasNoTextForAnIndexWhoseNameThePrimaryKeyHasNow)
{
    make("CREATE INDEX IX ON dbo.T (b)");
    const MSSQLIndexEntry old = index("IX");
    make("DROP INDEX IX ON dbo.T");
    make("ALTER TABLE dbo.T DROP CONSTRAINT PK_T");
    make("ALTER TABLE dbo.T ADD CONSTRAINT IX PRIMARY KEY (a)");
    MSSQLIndexEntry wider = old;
    wider.columns.append({q("c")});
    EXPECT_TRUE(load(old, wider)->texts().value(0).isNull());
    EXPECT_TRUE(m_loader->report().failure);
}

TEST_F(IndexChange, ListsNoConstraintAsAPlainIndex)
{
    make("CREATE INDEX IX ON dbo.T (b)");
    QStringList names;
    for (const MSSQLIndexEntry &entry : indexes())
        names.append(entry.indexName);
    EXPECT_EQ(names, (QStringList{q("PRIMARY"), q("IX")}));
}

TEST_F(IndexChangeOn2000, KeepsTheOptionsInTheirOldForm)
{
    make("CREATE INDEX IX ON dbo.T (b DESC, c) WITH FILLFACTOR = 60, PAD_INDEX");
    const MSSQLIndexEntry old = index("IX");
    MSSQLIndexEntry reordered = old;
    reordered.columns.swapItemsAt(0, 1);
    EXPECT_EQ(
        change(old, reordered),
        q("DROP INDEX dbo.T.IX;\r\nCREATE NONCLUSTERED INDEX IX ON dbo.T (c, b DESC) WITH FILLFACTOR = 60, "
          "PAD_INDEX;"));
    EXPECT_EQ(index("IX"), reordered);
    QStringList names;
    for (const MSSQLIndexEntry &entry : indexes())
        names.append(entry.indexName);
    EXPECT_EQ(names, (QStringList{q("PRIMARY"), q("IX")}));
}

} // namespace IndexChangeTests
