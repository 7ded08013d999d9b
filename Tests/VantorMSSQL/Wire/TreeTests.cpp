#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "Foundation/KNUserDefaults.h"
#include "Foundation/MachTimer.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"
#include "Support/HostileServerRelay.h"
#include "Support/TreeTesting.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <ctime>

namespace TreeTests {

using TreeTesting::find;
using TreeTesting::list;
using TreeTesting::load;
using TreeTesting::names;
using TreeTesting::Ptr;

namespace {

class WireTree : public testing::Test
{
protected:
    WireTree() { KNDispatch::pumpMainQueue(0); } // this is the main thread
    ~WireTree() override
    {
        EXPECT_TRUE(TreeTesting::settle());
        KNUserDefaults::standardUserDefaults()->removeObject(QStringLiteral("MSSQLAgentEnabled"));
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }

    std::shared_ptr<DatabaseTreeEntryServerRoot> root(const VantorDBC &settings)
    {
        const auto made = settings.createRootDatabaseTreeNode();
        made->setDelegate(delegate);
        return made;
    }

    /// Loads everything below an entry. The paths of all errors with their texts.
    QStringList errorsBelow(const Ptr &entry, const QString &path = {})
    {
        QStringList errors;
        if (!entry->canHaveChildren())
            return errors;
        load(entry);
        for (const Ptr &child : *entry->childEntries()) {
            const QString childPath = path + QLatin1Char('/') + child->displayName();
            if (dynamic_cast<const KNDatabaseTreeErrorEntry *>(child.get()))
                errors.append(childPath);
            errors += errorsBelow(child, childPath);
            ++count;
        }
        return errors;
    }

    const std::shared_ptr<RecordingTreeDelegate> delegate = std::make_shared<RecordingTreeDelegate>();
    int count = 0; ///< entries that errorsBelow() has seen
};

struct Edition
{
    const char *name;
    bool hasFederations;
    bool hasAgent;
};

class WireTreeOfEdition : public WireTree, public testing::WithParamInterface<Edition>
{
};

} // namespace

TEST_P(WireTreeOfEdition, LoadsWholeWithoutAnError)
{
    KNUserDefaults::standardUserDefaults()->setObject(QStringLiteral("MSSQLAgentEnabled"), true);
    const SampleServerFixture server({.arguments = {"--edition", GetParam().name}});
    const auto tree = root(*WireTest::settings(server.port()));
    load(tree);
    EXPECT_TRUE(tree->allDatabaseNames().contains(QStringLiteral("shop")));
    EXPECT_FALSE(tree->details().isEmpty());
    const Ptr shop = find(tree, list({"shop"}));
    load(shop);
    EXPECT_EQ(names(shop), GetParam().hasFederations
                               ? list({"Tables", "Views", "Programmability", "Federations"})
                               : list({"Tables", "Views", "Programmability"}));
    EXPECT_EQ(names(tree).contains(QStringLiteral("SQL Server Agent")), GetParam().hasAgent);
    EXPECT_EQ(errorsBelow(tree), QStringList());
    EXPECT_GT(count, 300);
    for (const RecordingTreeDelegate::Event &event : delegate->events())
        EXPECT_EQ(delegate->begins(*event.entry), delegate->finishes(*event.entry));
}

INSTANTIATE_TEST_SUITE_P(Editions, WireTreeOfEdition,
                         testing::Values(Edition{"2000", false, false}, Edition{"2008", false, true},
                                         Edition{"2022", false, true}, Edition{"azure", true, false}),
                         [](const auto &edition) { return std::string("Of") + edition.param.name; });

TEST_F(WireTree, ShowsColumnsKeysIndexesAndTriggersOfATable)
{
    const auto client = WireTest::connectedClient();
    WireTest::run(*client, QStringLiteral("USE shop"));
    WireTest::run(*client,
                  QStringLiteral("CREATE TABLE TreeTable (id int NOT NULL CONSTRAINT PK_Tree PRIMARY KEY, "
                                 "name nvarchar(20) NULL)"));
    WireTest::run(*client, QStringLiteral("CREATE INDEX IX_Tree ON TreeTable (name)"));
    WireTest::run(*client, QStringLiteral("create trigger TRG_Tree ON TreeTable AFTER INSERT AS SELECT 1"));
    const auto tree = root(*WireTest::settings(SampleServerFixture::shared().port()));
    const Ptr table = find(tree, list({"shop", "Tables", "TreeTable"}));
    const auto below = [&](const char *section) {
        const Ptr entry = find(table, list({section}));
        load(entry);
        return names(entry);
    };
    EXPECT_EQ(below("Columns"), list({"id", "name"}));
    EXPECT_EQ(find(table, list({"Columns", "id"}))->details(), QStringLiteral("PK, int, not null"));
    EXPECT_EQ(find(table, list({"Columns", "name"}))->details(), QStringLiteral("nvarchar(20), null"));
    EXPECT_EQ(below("Keys"), list({"PK_Tree"}));
    EXPECT_EQ(below("Indexes"), list({"IX_Tree", "PK_Tree"}));
    EXPECT_EQ(below("Triggers"), list({"TRG_Tree"}));
    WireTest::run(*client, QStringLiteral("DROP TABLE TreeTable"));
}

TEST_F(WireTree, TablesWithOddNamesHaveTheirColumns)
{
    const auto tree = root(*WireTest::settings(SampleServerFixture::shared().port()));
    const Ptr tables = find(tree, list({"shop", "Tables"}));
    load(tables);
    int odd = 0;
    for (const Ptr &table : *tables->childEntries()) {
        const QString name = table->displayName();
        const bool isOdd = std::any_of(name.begin(), name.end(), [](QChar character) {
            return !character.isLetterOrNumber() && character != QLatin1Char('_');
        });
        if (!isOdd)
            continue;
        ++odd;
        const Ptr columns = find(table, list({"Columns"}));
        load(columns);
        ASSERT_FALSE(columns->childEntries()->empty()) << name.toStdString();
        EXPECT_FALSE(columns->childEntries()->front()->details().isEmpty()) << name.toStdString();
    }
    EXPECT_GT(odd, 5);
}

TEST_F(WireTree, ADatabaseThatIsGoneShowsItsErrorAndTheOthersWork)
{
    const SampleServerFixture server;
    const auto client = WireTest::connectedClient(WireTest::settings(server.port()));
    WireTest::run(*client, QStringLiteral("CREATE DATABASE passing"));
    const auto tree = root(*WireTest::settings(server.port()));
    const Ptr tables = find(tree, list({"passing", "Tables"}));
    VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    const auto isDropped = [&] { // the server may not have seen yet that the connection was closed
        KNError inUse;
        WireTest::run(*client, QStringLiteral("DROP DATABASE passing"), &inUse);
        return !inUse;
    };
    ASSERT_TRUE(WireTest::waitFor(isDropped));
    load(tables);
    ASSERT_EQ(names(tables).size(), 1);
    EXPECT_NE(std::dynamic_pointer_cast<KNDatabaseTreeErrorEntry>(tables->childEntries()->front()), nullptr);
    EXPECT_TRUE(names(tables).first().contains(QStringLiteral("passing")))
        << names(tables).first().toStdString();
    const Ptr shop = find(tree, list({"shop", "Tables"}));
    load(shop);
    EXPECT_TRUE(names(shop).contains(QStringLiteral("Customers")));
    WireTest::run(*client, QStringLiteral("CREATE DATABASE passing"));
    load(tables, true);
    EXPECT_EQ(names(tables), QStringList());
}

TEST_F(WireTree, AConnectionThatIsLostWhileLoadingShowsOneErrorAndARefreshRecovers)
{
    const SampleServerFixture server;
    constexpr std::uint64_t Never = std::uint64_t(1) << 60;
    HostileServerRelay relay(server.port(), HostileServerRelay::Fault::Close, Never);
    const auto tree = root(*WireTest::settings(relay.port()));
    const Ptr tables = find(tree, list({"shop", "Tables"}));
    const Ptr table = find(tree, list({"shop", "Tables", "Customers"}));
    const Ptr keys = find(table, list({"Keys"}));
    VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();

    const std::uint64_t before = relay.bytesFromServer();
    load(keys);
    const std::uint64_t whole = relay.bytesFromServer() - before;
    const QStringList all = names(keys);
    EXPECT_FALSE(all.isEmpty());
    // Cut at places from the login to the last rows; what is shown is all, or why there is nothing.
    for (std::uint64_t place = whole / 8; place < whole; place += whole / 8) {
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
        relay.strikeAfter(place);
        load(keys, true);
        const auto children = *keys->childEntries();
        if (names(keys) != all) {
            ASSERT_EQ(children.size(), 1U) << place;
            EXPECT_NE(std::dynamic_pointer_cast<KNDatabaseTreeErrorEntry>(children.front()), nullptr);
            EXPECT_FALSE(children.front()->displayName().isEmpty());
        }
        relay.strikeAfter(Never);
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
        load(keys, true);
        EXPECT_EQ(names(keys), all);
    }
}

TEST_F(WireTree, AConnectionWithADatabaseShowsOnlyThat)
{
    const auto settings = WireTest::settings(SampleServerFixture::shared().port());
    settings->setDatabase(QStringLiteral("SHOP"));
    const auto tree = root(*settings);
    load(tree);
    EXPECT_EQ(names(tree), list({"shop"}));
    EXPECT_GT(tree->allDatabaseNames().size(), 1);
    EXPECT_FALSE(tree->allDatabaseNames().contains(QStringLiteral("master")));
}

TEST_F(WireTree, TheSearchFindsObjectsOfEveryDatabase)
{
    for (const char *edition : {"2008", "2022", "azure"}) {
        const SampleServerFixture server({.arguments = {"--edition", edition}});
        const auto tree = root(*WireTest::settings(server.port()));
        load(tree);
        const Ptr found = tree->copyWithSearchResults(QStringLiteral("LOAN"));
        ASSERT_NE(found, nullptr) << edition;
        EXPECT_EQ(names(found), list({"library"})) << edition;
        const Ptr shop = find(tree->copyWithSearchResults(QStringLiteral("customers")), list({"shop"}));
        EXPECT_TRUE(names(shop).contains(QStringLiteral("Customers"))) << edition;
        EXPECT_EQ(tree->copyWithSearchResults(QStringLiteral("no such thing")), nullptr) << edition;
    }
}

TEST_F(WireTree, AListOfTablesIsThereSoonAfterTheQueryHasAnswered)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer slows this process down, not the server";
#endif
    constexpr int TableCount = 3000;
    const SampleServerFixture server;
    const auto settings = WireTest::settings(server.port());
    const auto client = WireTest::connectedClient(settings);
    WireTest::run(*client, QStringLiteral("CREATE DATABASE big"));
    WireTest::run(
        *client, QStringLiteral("USE big DECLARE @i int DECLARE @s varchar(9) SET @i = 0 WHILE @i < %1 BEGIN "
                                "SET @s = CAST(@i AS varchar(9)) EXEC('CREATE TABLE t' + @s + ' (id int)') "
                                "SET @i = @i + 1 END")
                     .arg(TableCount));
    const auto tree = root(*settings);
    const Ptr tables = find(tree, list({"big", "Tables"}));
    const QString sql = tree->databaseConnectionDetails()->queryLoader()->queryByTitle(
        QStringLiteral("DatabaseTree_ListTables"));
    load(tables); // finds out the default schema, too
    // The machine may be busy with other things: what the tree adds to the query is counted as the time that
    // this process has computed, which nobody else makes longer.
    const auto computed = [] { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; };
    double querySeconds = 1e9;
    double queryComputing = 1e9;
    double loadComputing = 1e9;
    for (int round = 0; round < 5; ++round) {
        const MachTimer timer;
        double start = computed();
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &lent, KNError *failure) {
                EXPECT_EQ(lent.executeQuery(sql, failure)->rowCount(), TableCount);
            },
            *tables->databaseConnectionDetails(), nullptr);
        queryComputing = std::min(queryComputing, computed() - start);
        querySeconds = std::min(querySeconds, timer.seconds());
        const auto before = tables->childEntries(); // their end is not part of the load
        start = computed();
        tables->loadEntriesAsync(true);
        while (tables->isLoadingAsync())
            KNDispatch::pumpMainQueue(100);
        loadComputing = std::min(loadComputing, computed() - start);
        EXPECT_EQ(tables->childEntries()->size(), before->size());
    }
    const double added = loadComputing - queryComputing;
    RecordProperty("queryMicroseconds", static_cast<int>(querySeconds * 1e6));
    RecordProperty("addedMicroseconds", static_cast<int>(added * 1e6));
    EXPECT_LT(added, querySeconds / 2);
}

namespace {

std::string utf16(const QString &text)
{
    return std::string(reinterpret_cast<const char *>(text.utf16()),
                       static_cast<std::size_t>(text.size()) * 2);
}

/// Makes a server refuse one catalog query: its views are called by names that do not exist.
void refuse(HostileServerRelay &relay, const QString &title)
{
    const auto queries = WireTest::settings(1)->queryLoader();
    const QString text = queries->plainQueryByTitle(title);
    const std::string beginning = utf16(text.section(QLatin1Char('{'), 0, 0));
    const std::string views = utf16(QStringLiteral("sys."));
    relay.changeClient([beginning, views](std::span<std::uint8_t> bytes) {
        const std::string_view said(reinterpret_cast<const char *>(bytes.data()), bytes.size());
        const std::size_t start = said.find(beginning);
        if (start == std::string_view::npos)
            return;
        for (std::size_t at = said.find(views, start); at != std::string_view::npos;
             at = said.find(views, at + 1))
            bytes[at + 4] = 'z'; // the second s, in UTF-16
    });
}

class RefusedOnTheWire : public WireTree, public testing::WithParamInterface<const char *>
{
};

} // namespace

TEST_P(RefusedOnTheWire, CostsTheBranchesThatNeedItAndNoOthers)
{
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    const QStringList parameters = QString::fromLatin1(GetParam()).split(QLatin1Char(' '));
    refuse(relay, parameters[0]);
    const auto settings = WireTest::settings(relay.port());
    settings->setDatabase(QStringLiteral("library"));
    const auto tree = root(*settings);
    load(tree);
    const Ptr library = find(tree, list({"library"}));
    ASSERT_NE(library, nullptr);
    const QStringList errors = errorsBelow(library);
    EXPECT_FALSE(errors.isEmpty());
    for (const QString &error : errors) {
        EXPECT_TRUE(error.contains(parameters[1])) << error.toStdString();
        EXPECT_TRUE(error.contains(QStringLiteral("syz."))) << error.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Title, RefusedOnTheWire,
                         testing::Values("DatabaseTree_ListTables /Tables/", "List_KeysForTable /Keys/",
                                         "List_ViewsInDatabase_NonSystem /Views/",
                                         "List_StoredProceduresInDatabase_NonSystem /Stored"),
                         [](const auto &parameter) {
                             return QString::fromLatin1(parameter.param)
                                 .section(QLatin1Char(' '), 0, 0)
                                 .remove(QLatin1Char('_'))
                                 .toStdString();
                         });

} // namespace TreeTests
