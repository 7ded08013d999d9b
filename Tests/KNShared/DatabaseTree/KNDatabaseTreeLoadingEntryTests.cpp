#include "DatabaseTree/KNDatabaseTreeLoadingEntry.h"

#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"
#include "Foundation/KNAssert.h"
#include "Support/TreeTesting.h"

#include <thread>

using namespace TreeTesting;

namespace {

const KNError LoadFailure(QStringLiteral("test"), 7, QStringLiteral("It failed."));

/// A section whose loads the test controls.
class Section : public KNDatabaseTreeLoadingEntry
{
public:
    explicit Section(const Protocol &protocol = {})
        : KNDatabaseTreeLoadingEntry(protocol)
    {
    }
    using KNDatabaseTreeLoadingEntry::setCanRefresh;

    std::function<std::optional<List>(KNError *error)> loading = [this](KNError *) {
        return std::optional<List>({make<KNDatabaseTreeEntry>()});
    };
    std::atomic<int> loads = 0;
    std::atomic<bool> finishedOnMainThread = false;

protected:
    std::optional<List> loadEntries(KNError *error) override
    {
        ++loads;
        return loading(error);
    }
    void willFinishLoading() override { finishedOnMainThread = KNDispatch::isMainThread(); }
};

class Fixed : public KNDatabaseTreeFixedEntry
{
public:
    std::atomic<int> made = 0;

protected:
    List makeEntries() override
    {
        ++made;
        return {make<KNDatabaseTreeEntry>(), make<KNDatabaseTreeEntry>()};
    }
};

class LoadingEntry : public testing::Test
{
protected:
    void SetUp() override { KNDispatch::pumpMainQueue(0); }
    void TearDown() override { EXPECT_TRUE(settle()); }

    std::shared_ptr<Section> section(const KNDatabaseTreeLoadingEntry::Protocol &protocol = {})
    {
        const auto made = std::make_shared<Section>(protocol);
        made->setDelegate(delegate);
        return made;
    }

    const std::shared_ptr<RecordingTreeDelegate> delegate = std::make_shared<RecordingTreeDelegate>();
};

} // namespace

TEST_F(LoadingEntry, LoadsOnceUntilItIsForced)
{
    const auto entry = section();
    EXPECT_EQ(entry->childEntries(), nullptr);
    EXPECT_TRUE(load(entry));
    EXPECT_EQ(entry->childEntries()->size(), 1U);
    EXPECT_FALSE(load(entry));
    EXPECT_EQ(entry->loads, 1);
    EXPECT_TRUE(load(entry, true));
    EXPECT_EQ(entry->loads, 2);
}

TEST_F(LoadingEntry, NoChildrenAreAlsoLoaded)
{
    const auto entry = section();
    entry->loading = [](KNError *) { return std::optional<KNDatabaseTreeEntry::List>(std::in_place); };
    load(entry);
    ASSERT_NE(entry->childEntries(), nullptr);
    EXPECT_TRUE(entry->childEntries()->empty());
    EXPECT_FALSE(load(entry));
    EXPECT_EQ(entry->loads, 1);
}

TEST_F(LoadingEntry, ReturnsConfiguredResultOnceStarted)
{
    EXPECT_FALSE(load(section({.returnsOnceStarted = false})));
    EXPECT_TRUE(load(section({.returnsOnceStarted = true})));
}

TEST_F(LoadingEntry, FinishesOnTheConfiguredThread)
{
    const auto onMain = section({.finishes = KNDatabaseTreeLoadingEntry::Finishes::OnMainQueue});
    load(onMain);
    EXPECT_TRUE(onMain->finishedOnMainThread);
    EXPECT_TRUE(delegate->eventsOf(*onMain)[1].onMainThread);
    const auto inBackground = section();
    load(inBackground);
    EXPECT_FALSE(inBackground->finishedOnMainThread);
    EXPECT_FALSE(delegate->eventsOf(*inBackground)[1].onMainThread);
}

TEST_F(LoadingEntry, ASecondRequestWhileOneRunsStartsNothing)
{
    const auto entry = section({.returnsOnceStarted = false});
    KNSemaphore mayEnd(QStringLiteral("test"), 0);
    entry->loading = [&](KNError *) {
        mayEnd.wait();
        return std::optional<KNDatabaseTreeEntry::List>(std::in_place);
    };
    EXPECT_FALSE(entry->loadEntriesAsync(false));
    EXPECT_TRUE(entry->isLoadingAsync());
    EXPECT_TRUE(entry->loadEntriesAsync(false));
    EXPECT_TRUE(entry->loadEntriesAsync(true));
    mayEnd.signal();
    EXPECT_TRUE(settle());
    EXPECT_EQ(entry->loads, 1);
    EXPECT_EQ(delegate->begins(*entry), 1);
    EXPECT_EQ(delegate->finishes(*entry), 1);
}

TEST_F(LoadingEntry, AForcedLoadThatClearsFirstClearsAlsoWhileAnotherRuns)
{
    const auto entry = section({.clearsFirst = true});
    load(entry);
    KNSemaphore mayEnd(QStringLiteral("test"), 0);
    entry->loading = [&](KNError *) {
        mayEnd.wait();
        return std::optional<KNDatabaseTreeEntry::List>(std::in_place);
    };
    entry->loadEntriesAsync(true);
    EXPECT_EQ(entry->childEntries(), nullptr);
    entry->loadEntriesAsync(true);
    EXPECT_EQ(entry->childEntries(), nullptr);
    mayEnd.signal();
    EXPECT_TRUE(settle());
}

TEST_F(LoadingEntry, AForcedLoadKeepsTheChildrenUntilItEndsWhereItDoesNotClear)
{
    const auto entry = section();
    load(entry);
    KNSemaphore mayEnd(QStringLiteral("test"), 0);
    entry->loading = [&](KNError *) {
        mayEnd.wait();
        return std::optional<KNDatabaseTreeEntry::List>(std::in_place);
    };
    entry->loadEntriesAsync(true);
    EXPECT_EQ(entry->childEntries()->size(), 1U);
    mayEnd.signal();
    EXPECT_TRUE(settle());
    EXPECT_TRUE(entry->childEntries()->empty());
}

TEST_F(LoadingEntry, AnErrorWithoutChildrenIsShownInTheirPlace)
{
    const auto entry = section();
    entry->loading = [](KNError *error) {
        *error = LoadFailure;
        return std::nullopt;
    };
    load(entry);
    ASSERT_EQ(entry->childEntries()->size(), 1U);
    const auto shown = std::dynamic_pointer_cast<KNDatabaseTreeErrorEntry>(entry->childEntries()->front());
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->displayName(), QStringLiteral("It failed."));
    EXPECT_EQ(shown->error().code(), 7);
    EXPECT_FALSE(shown->canHaveChildren());
    EXPECT_EQ(shown->parent(), entry);
}

TEST_F(LoadingEntry, AnErrorBesideChildrenIsNotShown)
{
    const auto entry = section();
    load(entry);
    const auto before = entry->childEntries();
    entry->loading = [](KNError *error) {
        *error = LoadFailure;
        return std::nullopt;
    };
    load(entry, true);
    EXPECT_EQ(entry->childEntries(), before);
}

TEST_F(LoadingEntry, AProgrammingErrorEndsTheLoadAndIsShown)
{
    const auto entry = section();
    entry->loading = [](KNError *) -> std::optional<KNDatabaseTreeEntry::List> {
        KNAssert(false, "Never.", "Tests");
        return std::nullopt;
    };
    load(entry);
    EXPECT_EQ(names(entry), list({"Never."}));
    EXPECT_FALSE(entry->isLoadingAsync());
    EXPECT_TRUE(load(entry, true));
}

TEST_F(LoadingEntry, AnEntryMadeWithItsChildrenNeverLoads)
{
    const auto entry = section();
    entry->setCanRefresh(false);
    EXPECT_FALSE(load(entry));
    EXPECT_FALSE(load(entry, true));
    EXPECT_EQ(entry->loads, 0);
}

TEST_F(LoadingEntry, ALoadOutlivesEveryOtherOwnerOfItsEntryAndItsDelegate)
{
    KNSemaphore mayEnd(QStringLiteral("test"), 0);
    std::weak_ptr<Section> observed;
    {
        const auto entry = std::make_shared<Section>();
        const auto passing = std::make_shared<RecordingTreeDelegate>();
        entry->setDelegate(passing);
        entry->loading = [&](KNError *) {
            mayEnd.wait();
            return std::optional<KNDatabaseTreeEntry::List>(std::in_place);
        };
        observed = entry;
        entry->loadEntriesAsync(false);
    }
    EXPECT_FALSE(observed.expired());
    mayEnd.signal();
    EXPECT_TRUE(settle());
    EXPECT_TRUE(observed.expired());
}

TEST_F(LoadingEntry, ManyThreadsLoadOnce)
{
    for (const bool clearsFirst : {false, true}) {
        const auto told = std::make_shared<RecordingTreeDelegate>();
        const auto entry = section({.clearsFirst = clearsFirst});
        entry->setDelegate(told);
        std::vector<std::thread> threads;
        for (int number = 0; number < 8; ++number)
            threads.emplace_back([&] {
                for (int round = 0; round < 100; ++round)
                    entry->loadEntriesAsync(false);
            });
        for (std::thread &thread : threads)
            thread.join();
        EXPECT_TRUE(settle());
        EXPECT_EQ(entry->loads, 1);
        EXPECT_EQ(told->begins(*entry), 1);
        EXPECT_EQ(told->finishes(*entry), 1);
    }
}

TEST_F(LoadingEntry, FixedChildrenAreMadeOnceAndKept)
{
    const auto entry = std::make_shared<Fixed>();
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([&entry, number] { EXPECT_FALSE(entry->loadEntriesAsync(number % 2 == 0)); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(entry->made, 1);
    EXPECT_EQ(entry->childEntries()->size(), 2U);
    EXPECT_EQ(entry->childEntries()->front()->parent(), entry);
}
