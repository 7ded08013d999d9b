#include "VantorMSSQL/DatabaseTree/TreeTest.h"

#include <thread>

using namespace TreeTesting;

namespace {

constexpr int TableCount = 50;

class ManyRequests : public TreeTest
{
protected:
    ManyRequests()
    {
        FakeCatalog::Rows tables;
        for (int number = 0; number < TableCount; ++number)
            tables.append({number, "dbo", QStringLiteral("T%1").arg(number)});
        server->answer("DatabaseTree_ListTables", tables);
        server->answer("ColumnsForTable", {{"id", "int", nullptr, 10, 0, 0, 1}});
        server->answer("List_KeysForTable", {{"PK", 1}});
        server->answer("List_IndexesForTable", {{"IX"}});
        server->answer("List_TriggersForTableWithDetails", {{"trg", "", "", "CREATE TRIGGER", 1}});
    }
};

} // namespace

TEST_F(ManyRequests, TwoHundredSectionsFromManyThreadsRunOneQueryEach)
{
    const Ptr tables = entry({"shop", "Tables"});
    load(tables);
    std::vector<Ptr> sections;
    for (const Ptr &table : *tables->childEntries()) {
        table->loadEntriesAsync(false);
        for (const Ptr &section : *table->childEntries())
            sections.push_back(section);
    }
    ASSERT_EQ(sections.size(), 200U);

    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([&, number] {
            for (std::size_t index = 0; index < sections.size(); ++index)
                sections[(index * 7 + static_cast<std::size_t>(number) * 25) % sections.size()]
                    ->loadEntriesAsync(false);
        });
    // The main queue is served meanwhile, as by the window.
    EXPECT_TRUE(waitFor([&] {
        return std::all_of(sections.begin(), sections.end(),
                           [&](const Ptr &section) { return delegate->finishes(*section) > 0; });
    }));
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_TRUE(settle());
    for (const Ptr &section : sections) {
        const auto events = delegate->eventsOf(*section);
        ASSERT_EQ(events.size(), 2U);
        EXPECT_FALSE(events[0].isFinish);
        EXPECT_TRUE(events[1].isFinish);
        EXPECT_EQ(section->childEntries()->size(), 1U);
    }
    for (const char *title :
         {"ColumnsForTable", "List_KeysForTable", "List_IndexesForTable", "List_TriggersForTableWithDetails"})
        EXPECT_EQ(server->count(title), TableCount) << title;
}

TEST_F(ManyRequests, RefreshesAndReadersFromManyThreadsDoNotDisturbEachOther)
{
    const Ptr tables = entry({"shop", "Tables"});
    load(tables);
    std::atomic<bool> isOver = false;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&] {
            while (!isOver) {
                tables->loadEntriesAsync(true);
                if (const auto children = tables->childEntries()) {
                    EXPECT_EQ(children->size(), std::size_t(TableCount));
                }
                names(tables);
            }
        });
    EXPECT_TRUE(waitFor([&] { return server->count("DatabaseTree_ListTables") > 20; }));
    isOver = true;
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_TRUE(settle());
    EXPECT_EQ(names(tables).size(), TableCount);
    EXPECT_EQ(delegate->begins(*tables), delegate->finishes(*tables));
}

TEST_F(ManyRequests, LoadsThatWaitForTheServerDoNotHoldUpOthers)
{
    const Ptr tables = entry({"shop", "Tables"});
    load(tables);
    KNSemaphore mayAnswer(QStringLiteral("test"), 0);
    server->setDuringQuery([&](const QString &title) {
        if (title == QStringLiteral("ColumnsForTable"))
            mayAnswer.wait();
    });
    std::vector<Ptr> waiting;
    for (const Ptr &table : *tables->childEntries()) {
        table->loadEntriesAsync(false);
        waiting.push_back(table->childEntries()->front());
        waiting.back()->loadEntriesAsync(false);
    }
    const Ptr keys = find(tables->childEntries()->front(), list({"Keys"}));
    keys->loadEntriesAsync(false);
    EXPECT_TRUE(waitFor([&] { return keys->childEntries() != nullptr; }));
    for (const Ptr &columns : waiting) {
        EXPECT_TRUE(columns->isLoadingAsync());
        mayAnswer.signal();
    }
    EXPECT_TRUE(settle());
    for (const Ptr &columns : waiting)
        EXPECT_EQ(names(columns), list({"id"}));
}

TEST_F(ManyRequests, ATreeThatIsDroppedWhileItLoadsDoesNoHarm)
{
    KNSemaphore mayAnswer(QStringLiteral("test"), 0);
    server->setDuringQuery([&](const QString &title) {
        if (title == QStringLiteral("DatabaseTree_ListTables"))
            mayAnswer.wait();
    });
    std::weak_ptr<KNDatabaseTreeEntry> observed;
    {
        const Ptr tables = entry({"shop", "Tables"});
        tables->loadEntriesAsync(false);
        observed = tables;
        tree = nullptr;
    }
    mayAnswer.signal();
    EXPECT_TRUE(settle());
    EXPECT_TRUE(observed.expired());
}
