#pragma once

#include "Database/DatabaseResultSet.h"
#include "Database/KNQueryDetails.h"
#include "Database/KNResultSetHolder.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QList>

#include <functional>
#include <memory>
#include <optional>

/// Session state that is lost with the connection.
struct VantorSessionState
{
    bool hasTransaction = false;
    bool hasTemporaryTables = false;
    bool hasOptions = false;         ///< set by the user's statements
    bool hasUnknownOptions = false;  ///< among them are some that optionsBatch() does not restore
    bool beginsTransactions = false; ///< any later statement may begin a transaction
};

/// How a session is protected on the network, from the weakest to the strongest.
enum class VantorEncryption {
    Unknown,
    None,
    LoginOnly,  ///< the password is encrypted, statements and results are not
    Unverified, ///< everything is encrypted; the server's certificate was not verified
    Verified,   ///< everything is encrypted; the server's certificate was verified
};

/// One connection to a database server, used by one thread at a time. Every operation that accesses the
/// server blocks; only cancelCurrentQuery(), wasCancelled() and isConnected() may be called from another
/// thread meanwhile. A UI thread may call only wasCancelled(), isConnected() and the getters.
class KNSHARED_EXPORT VantorDatabaseClient
{
public:
    /// Reports progress in percent, from 0 to below 100; the second argument is always null.
    using Progress = std::function<void(double percentage, const void *)>;

    virtual ~VantorDatabaseClient();

    /// The client's own copy of the settings.
    virtual VantorDBC &databaseConnectionDetails() = 0;

    /// Opens the connection; cancelCurrentQuery() aborts the attempt.
    virtual bool connect(KNError *error) = 0;
    /// Whether the connection is open according to local state; does not access the server.
    virtual bool isConnected() const = 0;
    /// How the open session is protected, as measured when it was opened. Any thread after connect().
    virtual VantorEncryption encryption() const { return VantorEncryption::Unknown; }
    /// Closes the connection. Does nothing if it is closed.
    virtual void disconnect() = 0;

    /// Runs the batches in order and appends their results to the holder, until a batch fails or the run is
    /// cancelled. `error` must not be null.
    virtual bool executeQueryDetails(const QList<KNQueryDetails> &queries, KNResultSetHolder &withResultSet,
                                     const Progress &withBlock, KNError *error) = 0;
    /// Runs one batch and reads it completely. Returns the first result with columns, or null.
    virtual std::unique_ptr<DatabaseResultSet> executeQuery(const QString &sql, KNError *error) = 0;
    /// Runs a batch and ignores its rows. Failures are reported through `error` only.
    virtual bool executeNonQuery(const QString &sql, KNError *error) = 0;

    /// Inserts rows, each with its values in column order, into the table with this path (the name, or schema
    /// and name) in one transaction: all of them or none. `columnTypes` are the type names of the columns.
    /// `progressBlock` may be empty. `error` must not be null.
    virtual bool bulkInsert(const QList<QList<KNValue>> &rows, const QStringList &intoTable,
                            const QStringList &columnNames, const QStringList &columnTypes,
                            const Progress &progressBlock, KNError *error) = 0;

    /// Inserts rows as bulkInsert() does, but within the transaction that the caller has begun, so that many
    /// calls share one, and without altering text that the literals of bulkInsert() cannot express. Sets an
    /// error, the default, if the server kind has no such operation. `error` must not be null.
    virtual bool insertRows(const QList<QList<KNValue>> &rows, const QStringList &intoTable,
                            const QStringList &columnNames, const QStringList &columnTypes, KNError *error);

    virtual bool beginTransaction(KNError *error) = 0;
    virtual bool commitTransaction(KNError *error) = 0;
    virtual bool rollbackTransaction(KNError *error) = 0;

    /// The session's current database according to local state; null if unknown. Does not access the server.
    virtual QString currentDatabase() const = 0;
    /// Changes the current database. If the session cannot do that, a new one replaces it.
    virtual bool changeDatabase(const QString &name, KNError *error) = 0;
    /// Returns the databases accessible to the login, sorted by name; empty with an error.
    virtual QStringList databaseNames(KNError *error) = 0;
    /// Whether the session has an open transaction; empty with an error. Runs a separate batch, which later
    /// batches may notice.
    virtual std::optional<bool> isInTransaction(KNError *error) = 0;
    /// Whether running this text may open or end a transaction. Pure; any thread.
    virtual bool mayChangeTransaction(const QString &sql) const = 0;
    /// A batch that gives another session the options of this one; null, the default, if they are not known.
    /// Runs a separate batch, which later batches may notice.
    virtual QString optionsBatch(KNError *error);
    /// The state that running this text may leave in the session; none by default. Pure; any thread.
    virtual VantorSessionState sessionStateAfter(const QString &sql) const;

    /// Cancels the query running on another thread and blocks until the server has stopped it. The session
    /// survives unless the server stalled in the middle of a row. Any thread. Does nothing if no query runs.
    virtual bool cancelCurrentQuery(KNError *error) = 0;
    /// Whether the last run was stopped by cancelCurrentQuery(). Any thread.
    virtual bool wasCancelled() const = 0;
    /// Whether a statement of the last run failed, including those after the first result, which set no
    /// error. Any thread.
    virtual bool hadErrors() const = 0;

    /// Whether the server has closed the connection since its last use, as far as the local machine knows.
    /// Does not access the server. Call only between runs.
    virtual bool hasHungUp() const = 0;
    /// A new descriptor, which the caller owns, that becomes readable when the connection is closed between
    /// runs; -1, the default, if there is none. The connection stays open at least as long as the descriptor,
    /// so close it before the next run. Any thread.
    virtual int openIdleDescriptor() const { return -1; }
    /// Rolls back open transactions so that another caller can use the session. Accesses the server for at
    /// most a few seconds; false if the connection is unusable.
    virtual bool resetSession() = 0;
    /// Called when the client returns to the pool entry with the settings `details`. Copies session changes
    /// made by a user's query into both settings.
    virtual void prepareForPool(VantorDBC &details, bool isUserQuery) = 0;
};
