#pragma once

#include "Database/VantorDatabaseConnectionPool.h"

#include <QString>

class KNResultSetHolder;

/// The session that a KNStatementRun uses instead of one of the pool, and what happens in it around the
/// batches. The functions are called on the worker's thread, in the order in which they stand here; each may
/// wait for the server.
class KNSHARED_EXPORT KNStatementSession
{
public:
    virtual ~KNStatementSession();

    /// Calls `work` once with the connected client of the session, unless that fails.
    virtual void executeQuery(const VantorDatabaseConnectionPool::Work &work, KNError *error) = 0;
    /// Before the transaction; an error ends the run.
    virtual void prepare(VantorDatabaseClient &client, KNError *error) = 0;
    /// In a transaction that is open already, statements that set a savepoint and return to it.
    virtual QString savepoint() const = 0;
    virtual QString rollbackToSavepoint() const = 0;
    /// After each batch that succeeded, counted from 0; an error ends the run.
    virtual void check(int batch, const KNResultSetHolder &results, KNError *error) = 0;
    /// After the last batch, before the changes become permanent; an error ends the run.
    virtual void complete(VantorDatabaseClient &client, KNError *error) = 0;
    /// At the end, whatever the outcome is, if the session is still connected.
    virtual void restore(VantorDatabaseClient &client) = 0;
};
