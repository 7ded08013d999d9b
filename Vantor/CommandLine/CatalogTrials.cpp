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
        const Columns object = m_firstRows.value(trial.objectsTitle);
        if (!trial.objectsTitle.isEmpty() && object.isEmpty())
            return KNFormat("not tried: %@ gave no object", trial.objectsTitle);
        QMap<QString, QString> values = trial.values;
        for (QString &value : values)
            value = KNQueryTemplate::filled(value, object);
        QElapsedTimer timer;
        timer.start();
        KNError error;
        const auto rows = m_client.executeQuery(
            KNQueryTemplate::filled(m_queries.queryByTitle(trial.title), values), &error);
        if (error) {
            ++m_failures;
            return KNFormat("ERROR %@", error.localizedDescription().simplified());
        }
        const qint64 milliseconds = timer.elapsed();
        if (rows && rows->next())
            m_firstRows.insert(trial.title, columnsOf(*rows));
        return KNFormat("ok, %lld rows, %lld ms", rows ? rows->rowCount() : 0, milliseconds);
    }

    static Columns columnsOf(const DatabaseResultSet &row)
    {
        Columns columns;
        for (qsizetype i = 0; i < row.columnCount(); ++i)
            columns.insert(QString::number(i), row.stringForColumnIndex(i));
        return columns;
    }

    VantorDatabaseClient &m_client;
    const KNSystemDatabaseQueryHelper &m_queries;
    QHash<QString, Columns> m_firstRows; ///< by title, of the queries that gave rows
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
