// Loads the names of a database of 200,000 columns for completion, and by the query alone.

#include "Autocomplete/MSSQLAutocompleteHelper.h"
#include "BenchmarkSupport.h"
#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int Rounds = 5;

/// Seconds of the median of some rounds.
double median(const std::function<void()> &work)
{
    std::vector<double> times;
    for (int round = 0; round < Rounds; ++round) {
        const double begin = wallSeconds();
        work();
        times.push_back(wallSeconds() - begin);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

/// Runs the text; exits when it fails.
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

} // namespace

int main()
{
    keepLogsOutOfTheWay();
    const SampleServerFixture server({.arguments = {"--tables", "50000"}});
    const auto details = settingsFor(server.port());
    details->setDatabase(QStringLiteral("many"));
    const QString sql = details->queryLoader()->queryByTitle(QStringLiteral("List_EntriesForAutocomplete"));
    MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(*details);
    const qsizetype columns = rowCount(*details, sql);
    const double query = median([&] { rowCount(*details, sql); });
    const double load = median([&] { MSSQLAutocompleteHelper().doLoadAutocompleteDetails(*details); });
    std::printf("completion, columns               %lld\n", static_cast<long long>(columns));
    std::printf("completion, query alone           %.2f s\n", query);
    std::printf("completion, load of the entries   %.2f s, %.2f of the query\n", load, load / query);
    return 0;
}
