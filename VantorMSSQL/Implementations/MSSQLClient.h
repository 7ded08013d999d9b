#pragma once

#include "Database/VantorDatabaseClient.h"
#include "Foundation/KNSemaphore.h"
#include "Implementations/MSSQLCancellation.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Implementations/MSSQLErrorReport.h"
#include "Implementations/MSSQLFloodGuard.h"
#include "Implementations/MSSQLQuoting.h"

#include <QVariant>

#include <atomic>

struct tds_dblib_dbprocess;
struct tds_dblib_loginrec;
struct MSSQLServerAddress;
class KNSSHTunnel;
class KNSSHTunnelDelegate;
class MSSQLHandleScope;
class MSSQLLoginFile;

/// One connection to SQL Server through db-lib. The class has one header and one source file for each
/// concern: connecting, executing, rows, values, messages, the session.
class MSSQLClient : public VantorDatabaseClient, public MSSQLQuoting, public MSSQLErrorReport
{
public:
    /// The settings must be an MSSQLDatabaseConnectionDetails; the client keeps them, so pass a copy.
    explicit MSSQLClient(const VantorDBCPtr &databaseConnectionDetails,
                         MSSQLCancellation::Patience cancelPatience = {});
    ~MSSQLClient() override;

    MSSQLDatabaseConnectionDetails &databaseConnectionDetails() override
    {
        return *m_databaseConnectionDetails;
    }

    bool connect(KNError *error) override;
    /// Same as connect(error). The delegate, which may be null, is not called.
    bool connect(KNError *error, KNSSHTunnelDelegate *sshDelegate);
    /// Tries one row of the protocol table, and records the result in the settings and in the log.
    bool tryConnect(int connectOption, bool useNTLMv2, KNError *error);
    /// One login attempt with a db-lib protocol constant.
    bool connect(KNError *error, bool useNTLMv2, int tdsVersion);
    bool isConnected() const override;
    VantorEncryption encryption() const override { return m_encryption; }
    void disconnect() override;

    bool executeQueryDetails(const QList<KNQueryDetails> &queries, KNResultSetHolder &withResultSet,
                             const Progress &withBlock, KNError *error) override;
    /// Runs one batch into the holder.
    bool executeQueryDetails(const KNQueryDetails &details, KNResultSetHolder &withResultSet, KNError *error);
    bool executeQueryInternal(const QString &sql, KNResultSetHolder &withResultSet, KNError *error);
    std::unique_ptr<DatabaseResultSet> executeQuery(const QString &sql, KNError *error) override;
    bool executeNonQuery(const QString &sql, KNError *error) override;
    /// Writes a number given as text to a numeric column without quotes, commas and dollar signs, and all
    /// other values as escapeColumnValue() does.
    bool bulkInsert(const QList<QList<KNValue>> &rows, const QStringList &intoTable,
                    const QStringList &columnNames, const QStringList &columnTypes,
                    const Progress &progressBlock, KNError *error) override;
    /// As bulkInsert(), but text outside of ASCII has the prefix N, and servers before SQL Server 2008, which
    /// know no list of rows, get one statement for each row.
    bool insertRows(const QList<QList<KNValue>> &rows, const QStringList &intoTable,
                    const QStringList &columnNames, const QStringList &columnTypes, KNError *error) override;
    /// Sends one INSERT statement. `header` is its beginning, `rows` holds the rows as "(1,'a')".
    bool performBulkInsert(const QStringList &rows, const QString &header, const QStringList &dataTypes,
                           KNError *error);
    /// Runs a batch and only logs its results; false if it failed to run.
    bool testCommand(const QString &sql);

    bool beginTransaction(KNError *error) override;
    bool commitTransaction(KNError *error) override;
    bool rollbackTransaction(KNError *error) override;
    QString currentDatabase() const override;
    bool changeDatabase(const QString &name, KNError *error) override;
    QStringList databaseNames(KNError *error) override;
    std::optional<bool> isInTransaction(KNError *error) override;
    bool mayChangeTransaction(const QString &sql) const override;
    /// Null on SQL Server 2000, which does not report all options.
    QString optionsBatch(KNError *error) override;
    VantorSessionState sessionStateAfter(const QString &sql) const override;
    bool cancelCurrentQuery(KNError *error) override;
    bool wasCancelled() const override { return m_cancellation.isRequested(); }
    bool hadErrors() const override { return m_hadErrors; }
    bool hasHungUp() const override;
    int openIdleDescriptor() const override { return socket().duplicate(); }
    bool resetSession() override;
    void prepareForPool(VantorDBC &details, bool isUserQuery) override;

    /// Enables db-lib's protocol trace for the whole process, in "freetds.pid<n>.log" in the log's folder.
    /// Returns the file's path; null, with a line in the log, if it cannot be written.
    static QString enableFreeTDSLogging();
    /// Finds the word of the batch that a message complains about, as a range of the editor text. Not found
    /// if the message names none or the batch contains it more than once.
    static KNRange processErrorDetails(const DatabaseMessage &message, const KNQueryDetails &forQueryDetails);

    /// The server text for db-lib: the host text with its name replaced by its address, as address:port,
    /// address\instance or address:port\instance.
    static QString serverTextForHost(const QString &host);
    /// The user name for a second attempt at an Azure login; null if there is none.
    static QString azureUserName(const QString &username, const QString &host);

private:
    struct ConnectOption;
    enum class Sent { Executed, Failed, NotSent };
    enum class Next { Result, End, Unreadable, TooMany };

    static const ConnectOption connectOptions[4];
    static void initializeOnce();

    bool probe(bool useNTLMv2, KNError *error);
    std::optional<MSSQLServerAddress> resolveServer(const MSSQLEncryption &encryption, KNError *error) const;
    std::optional<MSSQLServerAddress> resolveTunnel(MSSQLEncryption *encryption, KNError *error);
    bool checkLoginTexts(KNError *error) const;
    static bool fitsLogin(const QString &text);
    bool isServerThere(MSSQLServerAddress &server, KNError *error);
    bool checkCertificate(const MSSQLServerAddress &server, MSSQLEncryption *encryption, KNError *error);
    bool logIn(bool useNTLMv2, int tdsVersion, const MSSQLLoginFile &file, const MSSQLServerAddress &server,
               KNError *error);
    const char *fillLogin(tds_dblib_loginrec *login, bool useNTLMv2, int tdsVersion) const;
    bool openHandle(tds_dblib_loginrec *login, const MSSQLLoginFile &file, const MSSQLServerAddress &server);
    QString serverNameForUsers() const;
    quint16 portForUsers(const MSSQLServerAddress &server) const;
    std::chrono::milliseconds loginTimeLeft() const;
    KNError timeoutError(const MSSQLServerAddress &server, const char *what) const;
    KNError loginError(const MSSQLServerAddress &server, const MSSQLEncryption &encryption);
    bool resolveInstance(QString *server, KNError *error) const;
    bool configureSession(const MSSQLEncryption &encryption, const MSSQLServerAddress &server,
                          KNError *error);
    bool reachDatabase(KNError *error);
    bool runInitialStatements(KNError *error);
    MSSQLSocketReference socket() const;
    void setSocket(const MSSQLSocketReference &socket);
    quint64 bytesWritten() const;
    quint64 sizeInClear(const QString &sql) const;
    quint64 largestLoginInClear(const MSSQLServerAddress &server) const;
    VantorEncryption encryptionMeasured(const MSSQLEncryption &encryption, const MSSQLServerAddress &server,
                                        quint64 loginSize, bool isAllEncrypted) const;

    struct InsertStatement;
    bool insertRows(const QList<QList<KNValue>> &rows, const InsertStatement &statement,
                    const Progress &progressBlock, KNError *error);
    bool sendRows(const QStringList &rows, const InsertStatement &statement, KNError *error);
    void executeWhole(const QString &sql, KNResultSetHolder &holder, KNError *error);
    bool runBatch(const KNQueryDetails &details, KNResultSetHolder &holder, KNError *error);
    Sent sendBatch(const QString &sql);
    bool failBatch(const KNQueryDetails &details, KNResultSetHolder &holder, KNError *error);
    static KNDatabaseResultSetPtr appendFailure(const KNQueryDetails &details, const KNError &error,
                                                quint64 line, KNResultSetHolder &holder);
    bool readResults(const KNQueryDetails &details, KNDatabaseResultSetPtr previous,
                     KNResultSetHolder &holder, KNError *error);
    KNError batchError(const KNQueryDetails &details, quint64 *lastLine) const;
    bool isLost() const;
    Next nextResult();
    void abandonBatch();
    void readColumns(KNDatabaseResultSet &resultSet);
    KNDatabaseResultSetPtr readRows(const KNDatabaseResultSetPtr &resultSet, KNResultSetHolder &holder);
    KNDatabaseResultSetPtr newComputeResultSet(int computeId, const QString &query,
                                               KNResultSetHolder &holder);
    void readComputeRow(int computeId, KNDatabaseResultSet &resultSet, KNResultSetHolder &holder);
    void showRows(KNDatabaseResultSet &resultSet, KNResultSetHolder &holder, MSSQLHandleScope &handle);
    void stopBatch();
    bool stopAtServer();

    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_databaseConnectionDetails;
    mutable KNSemaphore m_dbProcSemaphore;   ///< held during every db-lib call on the handle
    tds_dblib_dbprocess *m_dbProc = nullptr; ///< guarded by m_dbProcSemaphore
    mutable std::mutex m_socketMutex;
    MSSQLSocketReference m_socket; ///< of m_dbProc, usable without the handle; guarded by m_socketMutex
    std::atomic<VantorEncryption> m_encryption = VantorEncryption::Unknown;
    MSSQLCancellation m_cancellation;
    std::atomic<bool> m_hadErrors = false; ///< of the last run
    std::shared_ptr<KNSSHTunnel> m_tunnel; ///< null without a tunnel; accessed by the running thread only
};
