#include "Import/KNImportTransaction.h"

KNImportTransaction::KNImportTransaction(VantorDatabaseClient &client, const KNImportPlan &plan,
                                         const KNDatabaseImportHelper &helper,
                                         const KNImportRowConverter &converter, KNImportFaults &faults)
    : m_client(client)
    , m_plan(plan)
    , m_statements(helper.statementsForTable(plan.tablePath))
    , m_converter(converter)
    , m_faults(faults)
{
}

bool KNImportTransaction::run(const QString &sql, KNError *error)
{
    m_client.executeNonQuery(sql, error);
    return !*error;
}

bool KNImportTransaction::begin(KNError *error)
{
    m_client.beginTransaction(error);
    return !*error && (!m_plan.truncatesFirst || run(m_statements.truncate, error)) &&
           (!m_plan.writesIdentity || run(m_statements.allowIdentity, error));
}

bool KNImportTransaction::insert(std::span<const KNImportedRow> rows, KNError *error)
{
    return m_plan.faultFile.isNull() ? send(rows, error) : sendWithSavepoint(rows, error);
}

bool KNImportTransaction::send(std::span<const KNImportedRow> rows, KNError *error)
{
    QList<QList<KNValue>> values;
    values.reserve(static_cast<qsizetype>(rows.size()));
    for (const KNImportedRow &row : rows)
        values.append(row.values);
    m_client.insertRows(values, m_plan.tablePath, m_converter.columnNames(), m_converter.columnTypes(),
                        error);
    if (!*error)
        m_inserted += rows.size();
    return !*error;
}

/// Halves rows that the server refuses until the refused ones are found. After some errors a server has
/// rolled back the whole transaction: the savepoint is gone then, which ends the import.
bool KNImportTransaction::sendWithSavepoint(std::span<const KNImportedRow> rows, KNError *error)
{
    if (!run(m_statements.savepoint, error))
        return false;
    if (send(rows, error))
        return true;
    if (m_client.wasCancelled() || !m_client.isConnected())
        return false;
    const KNError refusal = *error;
    if (!run(m_statements.rollbackToSavepoint, error)) {
        *error = KNError(refusal.domain(), refusal.code(),
                         tr("%1\nAfter this error the server has undone the whole import.")
                             .arg(refusal.localizedDescription()));
        return false;
    }
    if (rows.size() == 1) {
        const KNImportRow &row = rows.front().row;
        return m_faults.add({row.line, {}, {}, refusal.localizedDescription()}, row.values, error);
    }
    const size_t half = rows.size() / 2;
    return sendWithSavepoint(rows.first(half), error) && sendWithSavepoint(rows.subspan(half), error);
}

bool KNImportTransaction::commit(KNError *error)
{
    m_client.commitTransaction(error);
    if (!*error) {
        forbidIdentity();
        return true;
    }
    if (!m_client.isConnected())
        *error = KNError(error->domain(), error->code(),
                         tr("%1\nThe connection was lost during the commit: look whether the rows are there.")
                             .arg(error->localizedDescription()));
    return false;
}

void KNImportTransaction::rollBack()
{
    m_inserted = 0;
    if (!m_client.isConnected())
        return;
    KNError error;
    m_client.rollbackTransaction(&error);
    if (error && m_client.isConnected() && m_client.isInTransaction(&error).value_or(true))
        m_client.disconnect();
    forbidIdentity();
}

void KNImportTransaction::forbidIdentity()
{
    if (!m_plan.writesIdentity || !m_client.isConnected())
        return;
    KNError error;
    if (!run(m_statements.forbidIdentity, &error))
        m_client.disconnect(); // the pool would lend the session as it is
}
