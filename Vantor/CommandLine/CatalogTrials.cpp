#include "CommandLine/CatalogTrials.h"

#include "CommandLine/ExitStatus.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/KNQueryTemplate.h"

#include <QElapsedTimer>
#include <QHash>

#include <cstdio>

namespace {

using Columns = QMap<QString, QString>; ///< the text of each column by its number

class CatalogTrials
{
public:
    CatalogTrials(VantorDatabaseClient &client, const KNSystemDatabaseQueryHelper &queries)
        : m_client(client)
        , m_queries(queries)
    {
        for (const KNQueryTrial &trial : queries.trials())
            m_trials.insert(trial.title, trial);
    }

    int run()
    {
        for (const KNQueryTrial &trial : m_queries.trials()) {
            print(trial.title, tryOut(trial));
            if (m_client.wasCancelled())
                return ExitCancelled;
        }
        return m_failures == 0 ? ExitSuccess : ExitSqlError;
    }

private:
    static void print(const QString &title, const QString &outcome)
    {
        fputs(KNFormat("%@  %@\n", title.leftJustified(42), outcome).toLocal8Bit().constData(), stdout);
        fflush(stdout);
    }

    /// What there is to tell about one query.
    QString tryOut(const KNQueryTrial &trial)
    {
        const Columns *object = trial.objectsTitle.isEmpty() ? &m_noObject : firstObject(trial.objectsTitle);
        if (!object)
            return KNFormat("not tried: %@ gave no object", trial.objectsTitle);
        QElapsedTimer timer;
        timer.start();
        KNError error;
        const auto result = rowsOf(trial, *object, &error);
        if (error) {
            ++m_failures;
            return KNFormat("ERROR %@", error.localizedDescription().simplified());
        }
        return KNFormat("ok, %lld rows, %lld ms", result ? result->rowCount() : 0, timer.elapsed());
    }

    std::unique_ptr<DatabaseResultSet> rowsOf(const KNQueryTrial &trial, const Columns &object,
                                              KNError *error)
    {
        QMap<QString, QString> values = trial.values;
        for (QString &value : values)
            value = KNQueryTemplate::filled(value, object);
        return m_client.executeQuery(KNQueryTemplate::filled(m_queries.queryByTitle(trial.title), values),
                                     error);
    }

    /// The first row of a query; null when it has none.
    const Columns *firstObject(const QString &title)
    {
        auto found = m_objects.find(title);
        if (found == m_objects.end()) {
            KNError error;
            const auto rows = rowsOf(m_trials.value(title), m_noObject, &error);
            std::optional<Columns> row;
            if (rows && rows->next()) {
                row.emplace();
                for (qsizetype i = 0; i < rows->columnCount(); ++i)
                    row->insert(QString::number(i), rows->stringForColumnIndex(i));
            }
            found = m_objects.insert(title, row);
        }
        return *found ? &**found : nullptr;
    }

    VantorDatabaseClient &m_client;
    const KNSystemDatabaseQueryHelper &m_queries;
    QHash<QString, KNQueryTrial> m_trials;            ///< by title
    QHash<QString, std::optional<Columns>> m_objects; ///< first rows by title
    const Columns m_noObject;
    int m_failures = 0;
};

} // namespace

int runCatalogTrials(VantorDatabaseClient &client, const KNSystemDatabaseQueryHelper &queries,
                     InterruptWatcher &interrupts)
{
    interrupts.setTarget([&client] {
        KNError ignored;
        client.cancelCurrentQuery(&ignored);
    });
    const int status = CatalogTrials(client, queries).run();
    interrupts.setTarget({});
    return status;
}
