#include "DatabaseTree/KNDatabaseTreeEntry.h"

#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "Foundation/KNAssert.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "Support/FakeDatabase.h"
#include "Support/TreeTesting.h"

using namespace TreeTesting;

namespace {

/// An entry with what is protected in the open.
class Open : public KNDatabaseTreeEntry
{
public:
    using KNDatabaseTreeEntry::actionItem;
    using KNDatabaseTreeEntry::createScriptToOptionsMenu;
    using KNDatabaseTreeEntry::make;
    using KNDatabaseTreeEntry::removeChildOrFail;
    using KNDatabaseTreeEntry::setChildEntries;
};

class Root : public DatabaseTreeEntryServerRoot
{
public:
    Root()
        : DatabaseTreeEntryServerRoot(Protocol{})
    {
    }
    using DatabaseTreeEntryServerRoot::disconnectMenuItem;
    using DatabaseTreeEntryServerRoot::make;
    QStringList allDatabaseNames() const override { return {}; }
    bool updateSearchEntries(KNError *) override { return true; }

protected:
    std::optional<List> loadEntries(KNError *) override { return List(); }
};

class ReceivedText : public KNQueryLoaderDelegate
{
public:
    void queryLoaderLoadedQuery(KNQueryLoader &, const QString &query) override { texts.append(query); }
    QStringList texts;
};

/// A row that stands for two objects.
class Named : public KNDatabaseTreeEntry
{
public:
    QList<QStringList> dragNames() const override
    {
        return {{QStringLiteral("my schema"), QStringLiteral("t")}, {QString(), QStringLiteral("u")}};
    }
};

} // namespace

TEST(TreeEntry, IsAPlainLeafByItself)
{
    const auto entry = std::make_shared<KNDatabaseTreeEntry>();
    EXPECT_FALSE(entry->canHaveChildren());
    EXPECT_EQ(entry->childEntries(), nullptr);
    EXPECT_FALSE(entry->loadEntriesAsync(true));
    EXPECT_TRUE(entry->menu().items.empty());
    EXPECT_TRUE(entry->dragDropString().isNull());
    EXPECT_EQ(entry->copyWithSearchResults(QStringLiteral("x")), nullptr);
}

TEST(TreeEntry, InsertsItsNamesWithTheQuotesOfTheServersLanguage)
{
    FakeDatabase::Server server;
    const FakeDatabase::Settings settings(server);
    Named entry;
    EXPECT_EQ(entry.dragDropString(), QStringLiteral("my schema.t, .u"));
    EXPECT_EQ(entry.insertedText(), QStringLiteral("my schema.t, .u")) << "without settings";
    entry.setDatabaseConnectionDetails(&settings);
    EXPECT_EQ(entry.insertedText(), QStringLiteral("\"my schema\".\"t\", .\"u\""));
    EXPECT_TRUE(KNDatabaseTreeEntry().insertedText().isNull());
}

TEST(TreeEntry, PassesDelegateAndSettingsToChildren)
{
    FakeDatabase::Server server;
    FakeDatabase::Settings settings(server);
    settings.setHost(QStringLiteral("srv"));
    const auto delegate = std::make_shared<RecordingTreeDelegate>();
    const auto parent = std::make_shared<Open>();
    parent->setDelegate(delegate);
    parent->setDatabaseConnectionDetails(&settings);
    settings.setHost(QStringLiteral("changed later"));
    const auto child = parent->make<KNDatabaseTreeEntry>();
    EXPECT_EQ(child->parent(), parent);
    EXPECT_EQ(child->delegate(), delegate);
    EXPECT_EQ(child->databaseConnectionDetails()->host(), QStringLiteral("srv"));
}

TEST(TreeEntry, RemovesOnlyItsChildren)
{
    const auto parent = std::make_shared<Open>();
    parent->removeChild(parent);
    const auto first = parent->make<KNDatabaseTreeEntry>();
    const auto second = parent->make<KNDatabaseTreeEntry>();
    parent->setChildEntries({first, second});
    const auto before = parent->childEntries();
    parent->removeChild(parent);
    EXPECT_EQ(parent->childEntries(), before);
    parent->removeChild(first);
    EXPECT_EQ(*parent->childEntries(), KNDatabaseTreeEntry::List{second});
    EXPECT_EQ(before->size(), 2U); // what somebody holds does not change
}

TEST(TreeEntry, RemovingNonChildCanBeProgrammingError)
{
    const auto parent = std::make_shared<Open>();
    parent->setChildEntries({parent->make<KNDatabaseTreeEntry>()});
    try {
        parent->removeChildOrFail(parent, "Not here.", "UI/Test");
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Not here."));
        EXPECT_EQ(failure.sourcePath(), QStringLiteral("UI/Test"));
    }
    EXPECT_EQ(parent->childEntries()->size(), 1U);
}

TEST(TreeEntry, UsesActionHandlerOfRoot)
{
    const auto root = std::make_shared<Root>();
    const auto entry = root->make<Open>();
    EXPECT_EQ(entry->contextHelper(), nullptr);
    EXPECT_FALSE(entry->actionItem("Do", "do:").isEnabled());
    const auto helper = std::make_shared<KNDatabaseTreeContextHelper>();
    root->setContextHelper(helper);
    EXPECT_EQ(entry->contextHelper(), helper);
    EXPECT_EQ(root->disconnectMenuItem().title, QStringLiteral("Disconnect"));
}

TEST(MenuItem, UnknownActionIsDisabled)
{
    const auto root = std::make_shared<Root>();
    const auto helper = std::make_shared<KNDatabaseTreeContextHelper>();
    root->setContextHelper(helper);
    const auto parent = root->make<Open>();
    EXPECT_FALSE(parent->actionItem("Do", "do:").isEnabled());
    EXPECT_FALSE(parent->actionItem("Do", "do:").perform());
    QString given;
    helper->addAction(QStringLiteral("do:"),
                      [&](const KNMenuRepresentedObject &object) { given = std::get<QString>(object); });
    const KNMenuItem known = parent->actionItem("Do", "do:", QStringLiteral("this"));
    EXPECT_TRUE(known.isEnabled());
    EXPECT_TRUE(known.perform());
    EXPECT_EQ(given, QStringLiteral("this"));
    EXPECT_FALSE(helper->performAction(QStringLiteral("else:"), {}));
    EXPECT_FALSE(KNMenuItem::separator().isEnabled());
}

TEST(MenuItem, AScriptWithoutALoaderIsShownDisabled)
{
    const auto root = std::make_shared<Root>();
    const auto helper = std::make_shared<KNDatabaseTreeContextHelper>();
    root->setContextHelper(helper);
    helper->addAction(QStringLiteral("addQueryTabWithQueryLoader:"), [](const KNMenuRepresentedObject &) {});
    const auto parent = root->make<Open>();
    const KNMenuItem without = parent->createScriptToOptionsMenu("CREATE to", nullptr);
    EXPECT_EQ(without.title, QStringLiteral("CREATE to"));
    EXPECT_FALSE(without.isEnabled());
    const KNMenuItem with =
        parent->createScriptToOptionsMenu("CREATE to", std::make_shared<StaticQueryLoader>(QString()));
    EXPECT_TRUE(with.isEnabled());
    EXPECT_TRUE(with.submenu->items[0].isEnabled());
    EXPECT_FALSE(with.submenu->items[1].isEnabled());
}

TEST(StaticQueryLoader, DeliversItsTextOnTheCallersThread)
{
    FakeDatabase::Server server;
    const auto loader = std::make_shared<StaticQueryLoader>(QStringLiteral("SELECT 1"));
    const auto received = std::make_shared<ReceivedText>();
    loader->setDelegate(received);
    loader->beginLoadingQuery(FakeDatabase::Settings(server));
    EXPECT_EQ(received->texts, list({"SELECT 1"}));
    EXPECT_EQ(loader->query(), QStringLiteral("SELECT 1"));
}

TEST(StaticQueryLoader, ADelegateThatIsGoneIsNoHarm)
{
    FakeDatabase::Server server;
    StaticQueryLoader loader(QStringLiteral("SELECT 1"));
    loader.setDelegate(std::make_shared<ReceivedText>());
    loader.beginLoadingQuery(FakeDatabase::Settings(server));
    EXPECT_EQ(loader.delegate(), nullptr);
}

TEST(TableNotification, CarriesTheTableAndItsConnection)
{
    FakeDatabase::Server server;
    FakeDatabase::Settings settings(server);
    settings.setHost(QStringLiteral("srv"));
    QList<KNDatabaseNotificationTable> received;
    const auto token = KNNotificationCenter::defaultCenter()->addObserver(
        KNDatabaseNotificationTable::TableAddedNotificationName,
        [&](const QString &, const QVariantMap &info) {
            received.append(KNDatabaseNotificationTable::fromUserInfo(info));
        });
    KNDatabaseNotificationTable::postRemovalNotificationForTable(QStringLiteral("b"), QString(), settings);
    KNDatabaseNotificationTable::postAdditionNotificationForTable(QStringLiteral("a"), QStringLiteral("dbo"),
                                                                  settings);
    ASSERT_EQ(received.size(), 1);
    EXPECT_EQ(received.first().tableName(), QStringLiteral("a"));
    EXPECT_EQ(received.first().tableSchema(), QStringLiteral("dbo"));
    EXPECT_EQ(received.first().dbDetails()->host(), QStringLiteral("srv"));
    EXPECT_EQ(KNDatabaseNotificationTable::fromUserInfo({}).dbDetails(), nullptr);
}
