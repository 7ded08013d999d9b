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

constexpr int Rounds = 9;

/// Seconds of one run.
double secondsOf(const std::function<void()> &work)
{
    const double begin = wallSeconds();
    work();
    return wallSeconds() - begin;
}

double median(std::vector<double> times)
{
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
    std::vector<double> queries;
    std::vector<double> loads;
    std::vector<double> ratios;
    for (int round = 0; round < Rounds; ++round) { // in turn: a machine is not equally fast all the time
        queries.push_back(secondsOf([&] { rowCount(*details, sql); }));
        MSSQLAutocompleteHelper helper;
        loads.push_back(secondsOf([&] { helper.doLoadAutocompleteDetails(*details); }));
        ratios.push_back(loads.back() / queries.back());
    }
    std::printf("completion, columns               %lld\n", static_cast<long long>(columns));
    std::printf("completion, query alone           %.2f s\n", median(queries));
    std::printf("completion, load of the entries   %.2f s, %.2f of the query\n", median(loads),
                median(ratios));
    return 0;
}
