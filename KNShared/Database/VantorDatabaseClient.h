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

/// State of a session that is lost with its connection.
struct VantorSessionState
{
    bool hasTransaction = false;
    bool hasTemporaryTables = false;
    bool hasOptions = false; ///< set by statements of the user
};

/// One connection to a database server. One thread works with it at a time; every operation that talks to the
/// server blocks its caller, and only cancelCurrentQuery(), wasCancelled() and isConnected() may come from
/// another thread meanwhile. Nothing here may be called from a UI thread but those three's tests and getters.
class KNSHARED_EXPORT VantorDatabaseClient
{
public:
    /// Told how far something has come, from 0 to below 100; the second argument is always null.
    using Progress = std::function<void(double percentage, const void *)>;

    virtual ~VantorDatabaseClient();

    /// The client's own copy of the settings.
    virtual VantorDBC &databaseConnectionDetails() = 0;

    /// Opens the connection; cancelCurrentQuery() ends the attempt.
    virtual bool connect(KNError *error) = 0;
    /// Whether the connection is open as far as it is known here; asks nobody.
    virtual bool isConnected() const = 0;
    /// Closes the connection. Harmless when it is closed.
    virtual void disconnect() = 0;

    /// Runs the batches in order into the holder, until one leaves an error or the run is cancelled.
    /// `error` must be given.
    virtual bool executeQueryDetails(const QList<KNQueryDetails> &queries, KNResultSetHolder &withResultSet,
                                     const Progress &withBlock, KNError *error) = 0;
    /// Runs one batch and reads it whole; the first result that has columns, or nothing.
    virtual std::unique_ptr<DatabaseResultSet> executeQuery(const QString &sql, KNError *error) = 0;
    /// Runs a batch whose rows are of no interest. Failures are reported through `error` only.
    virtual bool executeNonQuery(const QString &sql, KNError *error) = 0;

    /// Loads rows, each with its values in the order of the columns, into the table with this path (the name,
    /// or schema and name), inside one transaction: all of them or none. `columnTypes` are the names of the
    /// columns' types. `progressBlock` may be empty. `error` must be given.
    virtual bool bulkInsert(const QList<QList<KNValue>> &rows, const QStringList &intoTable,
                            const QStringList &columnNames, const QStringList &columnTypes,
                            const Progress &progressBlock, KNError *error) = 0;

    virtual bool beginTransaction(KNError *error) = 0;
    virtual bool commitTransaction(KNError *error) = 0;
    virtual bool rollbackTransaction(KNError *error) = 0;

    /// The database that the session is in, as far as it is known here; null when it is not. Asks nobody.
    virtual QString currentDatabase() const = 0;
    /// Goes to another database. Where a session cannot do that a new one takes its place.
    virtual bool changeDatabase(const QString &name, KNError *error) = 0;
    /// The databases that the login may go to, sorted by name; empty with an error.
    virtual QStringList databaseNames(KNError *error) = 0;
    /// Whether the session has a transaction open; empty with an error. Asking is a batch of its own, which
    /// later batches may notice.
    virtual std::optional<bool> isInTransaction(KNError *error) = 0;
    /// Whether running this text may open or end a transaction. Pure; any thread.
    virtual bool mayChangeTransaction(const QString &sql) const = 0;
    /// The state that running this text may leave in the session; none by default. Pure; any thread.
    virtual VantorSessionState sessionStateAfter(const QString &sql) const;

    /// Stops what runs on another thread; blocks until the server has let go. The session lives on, unless
    /// the server had stalled in the middle of a row. Any thread. Harmless when nothing runs.
    virtual bool cancelCurrentQuery(KNError *error) = 0;
    /// Whether the last run was stopped by cancelCurrentQuery(). Any thread.
    virtual bool wasCancelled() const = 0;

    /// Whether the server has closed the connection since it was used last, as far as the machine knows. Asks
    /// nobody. Of use between runs only.
    virtual bool hasHungUp() const = 0;
    /// Rolls back what is left open, so that somebody else can have the session. Asks the server, for some
    /// seconds at most; false when the connection is of no use any more.
    virtual bool resetSession() = 0;
    /// Called when the client goes back to the pool whose entry has the settings `details`. Carries what a
    /// user's query changed in the session over into both settings.
    virtual void prepareForPool(VantorDBC &details, bool isUserQuery) = 0;
};
