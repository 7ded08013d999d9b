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

    /// The result of one query.
    struct Outcome
    {
        KNError error;
        qint64 rowCount = 0;
        qint64 milliseconds = 0;
    };

    /// Tries a query on one object after the other until it returns rows: not every table has foreign keys.
    QString tryOut(const KNQueryTrial &trial)
    {
        const QList<Columns> objects =
            trial.objectsTitle.isEmpty() ? QList<Columns>{{}} : m_firstRows.value(trial.objectsTitle);
        if (objects.isEmpty())
            return KNFormat("not tried: %@ gave no object", trial.objectsTitle);
        Outcome outcome;
        for (const Columns &object : objects) {
            outcome = ask(trial, object);
            if (outcome.error || outcome.rowCount > 0 || m_client.wasCancelled())
                break;
        }
        if (!outcome.error)
            return KNFormat("ok, %lld rows, %lld ms", outcome.rowCount, outcome.milliseconds);
        ++m_failures;
        return KNFormat("ERROR %@", outcome.error.localizedDescription().simplified());
    }

    Outcome ask(const KNQueryTrial &trial, const Columns &object)
    {
        QMap<QString, QString> values = trial.values;
        for (QString &value : values)
            value = KNQueryTemplate::filled(value, object);
        QElapsedTimer timer;
        timer.start();
        Outcome outcome;
        const auto rows = m_client.executeQuery(
            KNQueryTemplate::filled(m_queries.queryByTitle(trial.title), values), &outcome.error);
        outcome.milliseconds = timer.elapsed();
        if (!rows && !outcome.error)
            outcome.error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0,
                                    QStringLiteral("The server returned no result."));
        if (!rows || outcome.error)
            return outcome;
        outcome.rowCount = rows->rowCount();
        QList<Columns> &kept = m_firstRows[trial.title];
        while (kept.size() < MostObjects && rows->next())
            kept.append(columnsOf(*rows));
        return outcome;
    }

    static Columns columnsOf(const DatabaseResultSet &row)
    {
        Columns columns;
        for (qsizetype i = 0; i < row.columnCount(); ++i)
            columns.insert(QString::number(i), row.stringForColumnIndex(i));
        return columns;
    }

    static constexpr qsizetype MostObjects = 50; ///< maximum number of objects for one query

    VantorDatabaseClient &m_client;
    const KNSystemDatabaseQueryHelper &m_queries;
    QHash<QString, QList<Columns>> m_firstRows; ///< by title, of the queries that returned rows
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
