#include "RowEditing/KNRowApplication.h"

#include "Database/VantorDatabaseClient.h"
#include "Foundation/KNFormat.h"

namespace {

const QString Domain = QStringLiteral("com.quorvex.vantor.rows");

/// The rows that the last change of a batch affected; a trigger's counts come before.
qint64 affectedRows(const KNResultSetHolder &results)
{
    qint64 count = KNDatabaseResultSet::UnknownCount;
    const auto resultSets = results.resultSets();
    for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
        if (resultSet->columnNames().isEmpty() &&
            resultSet->numberOfRowsAffected() != KNDatabaseResultSet::UnknownCount)
            count = resultSet->numberOfRowsAffected();
    }
    return count;
}

/// The row that a batch read after it was added; null if its last result has other columns.
KNDatabaseResultSetPtr addedRow(const KNResultSetHolder &results, qsizetype columnCount)
{
    const auto resultSets = results.resultSets();
    const bool isRead = !resultSets.isEmpty() && resultSets.last()->columnNames().size() == columnCount;
    return isRead ? resultSets.last() : nullptr;
}

} // namespace

KNRowApplication::KNRowApplication(std::shared_ptr<VantorTabConnection> connection,
                                   std::shared_ptr<void> lease, const QString &database,
                                   QList<KNRowChange> changes,
                                   std::shared_ptr<const KNTableStatements> statements)
    : m_connection(std::move(connection))
    , m_lease(std::move(lease))
    , m_database(database)
    , m_changes(std::move(changes))
    , m_statements(std::move(statements))
{
}

KNRowApplication::~KNRowApplication() = default;

void KNRowApplication::executeQuery(const VantorDatabaseConnectionPool::Work &work, KNError *error)
{
    m_connection->executeQuery(work, error);
}

void KNRowApplication::prepare(VantorDatabaseClient &client, KNError *error)
{
    m_readRows.clear();
    m_restoringBatch.clear();
    m_checked = 0;
    if (client.currentDatabase().compare(m_database, Qt::CaseInsensitive) != 0) {
        *error = KNError(Domain, 0,
                         KNFormat(tr("The rows were read from the database \"%@\", but the session is in "
                                     "\"%@\" now. Change the database back to apply the changes."),
                                  m_database, client.currentDatabase()));
        return;
    }
    const QString query = m_statements->optionsQuery();
    if (query.isNull())
        return;
    const auto rows = client.executeQuery(query, error);
    if (rows && !*error && rows->next())
        m_restoringBatch = rows->stringForColumnIndex(0);
}

void KNRowApplication::check(int batch, const KNResultSetHolder &results, KNError *error)
{
    const QString name = m_changes.value(batch).rowName;
    const qint64 count = affectedRows(results);
    QString problem;
    if (count == 0)
        problem =
            KNFormat(tr("%@: the row was changed or deleted by somebody else. Run the query again to see "
                        "its values."),
                     name);
    else if (count == KNDatabaseResultSet::UnknownCount)
        problem = KNFormat(tr("%@: the server did not report how many rows were changed. The session may "
                              "have switched these reports off (NOCOUNT)."),
                           name);
    else if (count > 1)
        problem =
            KNFormat(tr("%@: the statement changed %ld rows, because the key is not unique."), name, count);
    if (!problem.isEmpty())
        *error = KNError(Domain, 0, problem);
    else
        ++m_checked;
    if (const qsizetype columnCount = m_changes.value(batch).readColumns;
        problem.isEmpty() && columnCount > 0)
        if (const KNDatabaseResultSetPtr row = addedRow(results, columnCount))
            m_readRows.insert(m_changes.at(batch).row, row);
}

void KNRowApplication::complete(VantorDatabaseClient &client, KNError *error)
{
    if (m_checked != m_changes.size()) {
        *error = KNError(Domain, 0, tr("The statements do not belong to the changed rows."));
        return;
    }
    for (const KNRowChange &change : m_changes) {
        if (change.readBack.isNull())
            continue;
        KNResultSetHolder results;
        client.executeQueryDetails({{change.readBack, {0, change.readBack.size()}, 0}}, results, {}, error);
        if (!*error)
            *error = results.failure();
        if (*error || client.wasCancelled())
            return;
        const auto resultSets = results.resultSets();
        if (!resultSets.isEmpty())
            m_readRows.insert(change.row, resultSets.first());
    }
}

void KNRowApplication::restore(VantorDatabaseClient &client)
{
    KNError ignored;
    if (!m_restoringBatch.isNull())
        client.executeNonQuery(m_restoringBatch, &ignored);
}
