// Lists the 50,000 tables of a database, by the query alone and as a section of the object tree, and tries
// the other catalog queries on that database.

#include "BenchmarkSupport.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "Foundation/KNDispatch.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int Rounds = 5;
const QString Database = QStringLiteral("many");

/// Milliseconds of the median of some rounds.
double median(const std::function<void()> &work)
{
    std::vector<double> times;
    for (int round = 0; round < Rounds; ++round) {
        const double begin = wallSeconds();
        work();
        times.push_back(wallSeconds() - begin);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2] * 1e3;
}

/// The number of rows; exits when it fails.
qsizetype rowCount(const VantorDBC &details, const QString &sql)
{
    qsizetype count = 0;
    KNError error;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            const auto rows = client.executeQuery(sql, failure);
            count = rows ? rows->rowCount() : 0;
        },
        details, &error);
    if (error) {
        std::fprintf(stderr, "%s\n", error.localizedDescription().toUtf8().constData());
        std::exit(1);
    }
    return count;
}

void load(const KNDatabaseTreeEntry::Ptr &entry)
{
    entry->loadEntriesAsync(true);
    while (entry->isLoadingAsync() || !entry->childEntries())
        KNDispatch::pumpMainQueue(10);
}

/// The section with the tables of the database.
KNDatabaseTreeEntry::Ptr tablesSection(const KNDatabaseTreeEntry::Ptr &root)
{
    load(root);
    const auto databases = root->childEntries();
    const auto database = std::find_if(databases->begin(), databases->end(),
                                       [](const auto &entry) { return entry->displayName() == Database; });
    load(*database);
    return (*database)->childEntries()->front();
}

} // namespace

int main()
{
    keepLogsOutOfTheWay();
    const SampleServerFixture server({.arguments = {"--tables", "50000"}});
    const auto details = settingsFor(server.port());
    const auto root = details->createRootDatabaseTreeNode();
    const auto tables = tablesSection(root);
    const QString sql = details->queryLoader()->queryByTitle(QStringLiteral("DatabaseTree_ListTables"));
    const VantorDBC &settings = *tables->databaseConnectionDetails();
    load(tables); // finds out the default schema, too
    qsizetype count = 0;
    const double query = median([&] { count = rowCount(settings, sql); });
    const double section = median([&] { load(tables); });
    std::printf("tables, query alone             %.0f ms, %d rows\n", query, static_cast<int>(count));
    std::printf("tables, loaded and sorted       %.0f ms, %.2f times the query\n", section, section / query);
    KNDispatch::waitUntilIdle(60000);
    return 0;
}
