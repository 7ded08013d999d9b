// Lists the 50,000 tables of a database, by the query alone and as a section of the object tree, and tries
// the other catalog queries on that database.

#include "BenchmarkSupport.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "Foundation/KNDispatch.h"
#include "QueryLoader/KNQueryTemplate.h"
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

/// The first row of a query that only reads; exits when it fails.
QStringList firstRow(const VantorDBC &details, const QString &sql, qsizetype *rowCount)
{
    QStringList cells;
    KNError error;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            const auto rows = client.executeQuery(sql, failure);
            *rowCount = rows ? rows->rowCount() : 0;
            for (qsizetype i = 0; rows && rows->next() && cells.isEmpty();)
                for (i = 0; i < rows->columnCount(); ++i)
                    cells.append(rows->stringForColumnIndex(i));
        },
        details, &error);
    if (error) {
        std::fprintf(stderr, "%s\n%s\n", sql.toUtf8().constData(),
                     error.localizedDescription().toUtf8().constData());
        std::exit(1);
    }
    return cells;
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

void listTables(const MSSQLDatabaseConnectionDetails &details)
{
    const auto root = details.createRootDatabaseTreeNode();
    const auto tables = tablesSection(root);
    const QString sql = details.queryLoader()->queryByTitle(QStringLiteral("DatabaseTree_ListTables"));
    const VantorDBC &settings = *tables->databaseConnectionDetails();
    qsizetype count = 0;
    load(tables); // finds out the default schema, too
    const double query = median([&] { firstRow(settings, sql, &count); });
    const double section = median([&] { load(tables); });
    std::printf("tables, query alone             %.0f ms, %d rows\n", query, static_cast<int>(count));
    std::printf("tables, loaded and sorted       %.0f ms, %.2f times the query\n", section, section / query);
    KNDispatch::waitUntilIdle(60000);
}

/// Every query that only reads and takes its time, filled from the first row of the one that names its
/// object.
void tryQueries(MSSQLDatabaseConnectionDetails &details)
{
    details.setDatabase(Database);
    const auto queries = details.queryLoader();
    QHash<QString, QMap<QString, QString>> objects;
    for (const KNQueryTrial &trial : queries->trials()) {
        QMap<QString, QString> values = trial.values;
        for (QString &value : values)
            value = KNQueryTemplate::filled(value, objects.value(trial.objectsTitle));
        if (!trial.objectsTitle.isEmpty() && objects.value(trial.objectsTitle).isEmpty())
            continue;
        const QString sql = KNQueryTemplate::filled(queries->queryByTitle(trial.title), values);
        qsizetype count = 0;
        const double begin = wallSeconds();
        const QStringList row = firstRow(details, sql, &count);
        const double milliseconds = (wallSeconds() - begin) * 1e3;
        for (qsizetype i = 0; i < row.size(); ++i)
            objects[trial.title].insert(QString::number(i), row[i]);
        std::printf("query, %-45s%.0f ms, %d rows\n", trial.title.toUtf8().constData(), milliseconds,
                    static_cast<int>(count));
    }
}

} // namespace

int main()
{
    keepLogsOutOfTheWay();
    const SampleServerFixture server({.arguments = {"--tables", "50000"}});
    const auto details = settingsFor(server.port());
    listTables(*details);
    tryQueries(*details);
    return 0;
}
