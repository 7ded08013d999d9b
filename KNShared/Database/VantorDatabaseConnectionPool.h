#pragma once

#include "Database/VantorIdleClients.h"

#include <condition_variable>
#include <mutex>
#include <thread>

class VantorTabConnection;

/// Lends connected clients and keeps returned ones for later use with the same settings. Any thread. Each
/// caller gets its own client, so callers do not block each other. A transaction left open is rolled back
/// when its client is returned.
class KNSHARED_EXPORT VantorDatabaseConnectionPool
{
public:
    /// Work to run with a client. It blocks on the server and reports failure through `error`.
    using Work = std::function<void(VantorDatabaseClient &client, KNError *error)>;

    struct Limits
    {
        std::size_t idlePerConnection = 4;
        std::size_t idle = 64;
        std::chrono::milliseconds idleTime = std::chrono::minutes(5);
    };

    /// The program's pool. It shuts down with the QCoreApplication.
    static VantorDatabaseConnectionPool *sharedInstance();

    VantorDatabaseConnectionPool();
    explicit VantorDatabaseConnectionPool(Limits limits);
    ~VantorDatabaseConnectionPool();
    VantorDatabaseConnectionPool(const VantorDatabaseConnectionPool &) = delete;
    VantorDatabaseConnectionPool &operator=(const VantorDatabaseConnectionPool &) = delete;

    /// Runs the work with a connected client of these settings; true if it left no error. `error` may be
    /// null. With `retryOnError` the work runs again on a fresh connection if the pooled connection was dead.
    bool executeQuery(const Work &work, const VantorDBC &withConnectionDetails, KNError *error,
                      bool retryOnError = false);

    /// Returns a connection dedicated to one user query tab. The pool must outlive it.
    std::unique_ptr<VantorTabConnection> connectionForTab(const VantorDBC &details);

    /// Returns a connected client that the caller keeps; null with an error on failure. Server properties
    /// found during login are remembered for the next login with the same settings. A refused login or
    /// database is not retried until forgetRefusals() is called, because attempts count against the account.
    /// `connecting`, if not empty, is called with each client before it connects, so that another thread can
    /// cancel it, and with null afterwards.
    std::unique_ptr<VantorDatabaseClient>
    connectedClient(const VantorDBC &details, KNError *error,
                    const std::function<void(VantorDatabaseClient *client)> &connecting = {});
    /// Keeps a connected client for later use with these settings. Accesses the server.
    void keep(const VantorDBC &details, std::unique_ptr<VantorDatabaseClient> client);
    /// The weakest protection of all sessions that were opened with this account and these session
    /// parameters, in any database; Unknown if there was none.
    VantorEncryption encryptionOf(const VantorDBC &details) const;
    /// Allows retrying a refused login. Called when the user asks for it.
    void forgetRefusals(const VantorDBC &details);

    std::size_t idleCount() const;
    void closeIdleClients();
    /// Closes idle clients and, from now on, returned ones.
    void end();

private:
    using Client = std::unique_ptr<VantorDatabaseClient>;

    /// Server properties found by logins with equal settings.
    struct LoginHints
    {
        VantorDBCPtr details;
        VantorDBCPtr settings;     ///< with the last login's findings; null before a login
        bool isUnreliable = false; ///< were wrong once; every login then detects them again
    };

    struct Protection
    {
        VantorDBCPtr details;
        VantorEncryption weakest = VantorEncryption::Unknown;
    };

    struct Refusal
    {
        VantorDBCPtr details;
        KNError error;
    };
    struct FirstLogin;
    class LoginTurn;

    using Connecting = std::function<void(VantorDatabaseClient *client)>;
    Client connect(const VantorDBC &details, KNError *error, const Connecting &connecting);
    static bool connectClient(VantorDatabaseClient &client, KNError *error, const Connecting &connecting);
    bool isRefused(const VantorDBC &details, KNError *error) const;
    void rememberEncryption(const VantorDBC &details, VantorEncryption encryption);
    void rememberRefusal(const VantorDBC &details, const KNError &error);
    bool hasLoggedIn(const VantorDBC &details) const;
    Client borrow(const VantorDBC &details, KNError *error);
    void giveBack(const VantorDBC &details, Client client);
    void dropIdle(const VantorDBC &details);
    LoginHints loginHintsFor(const VantorDBC &details) const;
    void remember(const LoginHints &hints);
    void closeExpired();

    const Limits m_limits;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;     ///< signalled when a client becomes idle or the pool ends
    VantorIdleClients m_idle;              ///< guarded by m_mutex
    std::vector<LoginHints> m_loginHints;  ///< guarded by m_mutex
    std::vector<Refusal> m_refusals;       ///< guarded by m_mutex
    std::vector<Protection> m_protections; ///< guarded by m_mutex
    std::vector<std::shared_ptr<FirstLogin>> m_firstLogins; ///< in progress; guarded by m_mutex
    std::condition_variable m_firstLoginEnded;
    bool m_isEnding = false; ///< guarded by m_mutex
    std::thread m_reaper;    ///< closes clients that were idle for too long
};
