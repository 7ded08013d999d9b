#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "Foundation/MachTimer.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

#include <malloc.h>

using namespace TreeTesting;

namespace {

constexpr int ManyTables = 50'000;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool CanMeasureMemory = false; // the sanitizers' own allocators keep no such account
#else
constexpr bool CanMeasureMemory = true;
#endif

std::size_t bytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

class FiftyThousandTables : public TreeTest
{
protected:
    FiftyThousandTables()
    {
        rows.reserve(ManyTables);
        for (int number = 0; number < ManyTables; ++number)
            rows.append({number, number % 2 ? "dbo" : "warehouse",
                         QStringLiteral("Measurements of the year %1").arg(number * 7919 % ManyTables)});
        server->answer("DatabaseTree_ListTables", rows);
    }

    FakeCatalog::Rows rows; ///< kept: what the test itself needs is not what is measured

    void postAdded(const QString &name)
    {
        const auto details = server->settings();
        details->setDatabase(QStringLiteral("shop"));
        KNDatabaseNotificationTable::postAdditionNotificationForTable(name, QStringLiteral("dbo"), *details);
    }
};

} // namespace

TEST_F(FiftyThousandTables, TakeLessThanAKilobyteEach)
{
    if (!CanMeasureMemory)
        GTEST_SKIP() << "Memory is measured without sanitizers.";
    const Ptr tables = entry({"shop", "Tables"});
    load(tables); // what is allocated once is there
    tables->loadEntriesAsync(true);
    EXPECT_TRUE(settle());
    VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    const std::size_t with = bytesInUse();
    const std::size_t count = tables->childEntries()->size();
    ASSERT_EQ(count, std::size_t(ManyTables));
    server->answer("DatabaseTree_ListTables", {});
    load(tables, true);
    VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    const std::size_t perTable = (with - bytesInUse()) / count;
    RecordProperty("bytesPerTable", static_cast<int>(perTable));
    EXPECT_LT(perTable, 1024U);
    EXPECT_GT(perTable, sizeof(KNDatabaseTreeEntry));
}

TEST_F(FiftyThousandTables, InsertOneMoreInSortOrder)
{
    const Ptr tables = entry({"shop", "Tables"});
    load(tables);
    postAdded(QStringLiteral("Measurements of the year 3000a"));
    const MachTimer timer;
    for (int number = 0; number < 10; ++number)
        postAdded(QStringLiteral("Measurements of the year 2500%1").arg(QChar(u'a' + number)));
    const double milliseconds = timer.seconds() * 1000 / 10;
    RecordProperty("microsecondsPerInsert", static_cast<int>(milliseconds * 1000));
    const auto children = tables->childEntries();
    ASSERT_EQ(children->size(), std::size_t(ManyTables + 11));
    const auto isOrdered = [](const Ptr &left, const Ptr &right) {
        const bool leftIsDefault = !left->displayName().contains(QLatin1Char('.'));
        const bool rightIsDefault = !right->displayName().contains(QLatin1Char('.'));
        return leftIsDefault != rightIsDefault ? leftIsDefault : left->displayName() < right->displayName();
    };
    EXPECT_TRUE(std::is_sorted(children->begin(), children->end(), isOrdered));
}
