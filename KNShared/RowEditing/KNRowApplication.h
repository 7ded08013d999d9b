#pragma once

#include "Database/KNResultSetHolder.h"
#include "Database/KNStatementSession.h"
#include "Database/VantorTabConnection.h"
#include "RowEditing/KNRowChange.h"

#include <QHash>

/// Applies changes of rows in the session that has read them: every statement must affect exactly one row,
/// and the rows are read again before the changes become permanent. Used by one run; the results may be read
/// when it has ended.
class KNSHARED_EXPORT KNRowApplication : public KNStatementSession
{
    Q_DECLARE_TR_FUNCTIONS(KNRowApplication)

public:
    /// `lease` is released when nothing uses the session any more. `database` is the one that the rows were
    /// read from.
    KNRowApplication(std::shared_ptr<VantorTabConnection> connection, std::shared_ptr<void> lease,
                     const QString &database, QList<KNRowChange> changes,
                     std::shared_ptr<const KNTableStatements> statements);
    ~KNRowApplication() override;

    void executeQuery(const VantorDatabaseConnectionPool::Work &work, KNError *error) override;
    void prepare(VantorDatabaseClient &client, KNError *error) override;
    QString savepoint() const override { return m_statements->savepoint(); }
    QString rollbackToSavepoint() const override { return m_statements->rollbackToSavepoint(); }
    void check(int batch, const KNResultSetHolder &results, KNError *error) override;
    void complete(VantorDatabaseClient &client, KNError *error) override;
    void restore(VantorDatabaseClient &client) override;

    const QList<KNRowChange> &changes() const { return m_changes; }
    /// The rows that were read again, each as a result with at most one row.
    const QHash<KNRowEdits::RowId, KNDatabaseResultSetPtr> &readRows() const { return m_readRows; }

private:
    const std::shared_ptr<VantorTabConnection> m_connection;
    const std::shared_ptr<void> m_lease;
    const QString m_database;
    const QList<KNRowChange> m_changes;
    const std::shared_ptr<const KNTableStatements> m_statements;
    QString m_restoringBatch;
    int m_checked = 0; ///< statements whose effect is known
    QHash<KNRowEdits::RowId, KNDatabaseResultSetPtr> m_readRows;
};
