#pragma once

#include "Database/VantorIdleClients.h"

#include <condition_variable>
#include <mutex>
#include <thread>

class VantorTabConnection;

/// Lends connected clients for as long as a piece of work takes, and keeps those that come back for the next
/// one with the same settings. Any thread; every caller gets a client of its own, so nobody waits for
/// somebody else's work. A transaction that work leaves open is rolled back when its client comes back.
class KNSHARED_EXPORT VantorDatabaseConnectionPool
{
public:
    /// What is done with a client. It blocks on the server and leaves its failure in the error.
    using Work = std::function<void(VantorDatabaseClient &client, KNError *error)>;

    struct Limits
    {
        std::size_t idlePerConnection = 4;
        std::size_t idle = 64;
        std::chrono::milliseconds idleTime = std::chrono::minutes(5);
    };

    /// The pool of the program. It ends with the QCoreApplication.
    static VantorDatabaseConnectionPool *sharedInstance();

    VantorDatabaseConnectionPool();
    explicit VantorDatabaseConnectionPool(Limits limits);
    ~VantorDatabaseConnectionPool();
    VantorDatabaseConnectionPool(const VantorDatabaseConnectionPool &) = delete;
    VantorDatabaseConnectionPool &operator=(const VantorDatabaseConnectionPool &) = delete;

    /// Runs the work with a connected client of these settings; true when it left no error. `error` may be
    /// null. With `retryOnError` the work runs once more, on a fresh connection, when the lent one turned out
    /// to be dead.
    bool executeQuery(const Work &work, const VantorDBC &withConnectionDetails, KNError *error,
                      bool retryOnError = false);

    /// A connection that stays with one user's query tab. The pool must outlive it.
    std::unique_ptr<VantorTabConnection> connectionForTab(const VantorDBC &details);

    /// A client for whoever keeps it, connected; null with an error when that fails. What a login finds out
    /// about the server is remembered for the next one with the same settings. A login that the server has
    /// refused is not tried again until forgetRefusals() is called: attempts count against the account. The
    /// same goes for a refused database. `connecting`, if there is one, is called with each client before it
    /// connects, so that another thread can cancel it, and with null behind that.
    std::unique_ptr<VantorDatabaseClient>
    connectedClient(const VantorDBC &details, KNError *error,
                    const std::function<void(VantorDatabaseClient *client)> &connecting = {});
    /// The user wants to try again with this login.
    void forgetRefusals(const VantorDBC &details);

    std::size_t idleCount() const;
    void closeIdleClients();
    /// Closes what is idle and, from now on, what comes back.
    void end();

private:
    using Client = std::unique_ptr<VantorDatabaseClient>;

    /// What logins with equal settings have found out about the server.
    struct LoginHints
    {
        VantorDBCPtr details;
        VantorDBCPtr settings;     ///< with what the last login found out; null before a login
        bool isUnreliable = false; ///< it did not hold once: every login has to find out anew
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
    std::condition_variable m_changed;                      ///< a client has become idle, or this is the end
    VantorIdleClients m_idle;                               ///< guarded by m_mutex
    std::vector<LoginHints> m_loginHints;                   ///< guarded by m_mutex
    std::vector<Refusal> m_refusals;                        ///< guarded by m_mutex
    std::vector<std::shared_ptr<FirstLogin>> m_firstLogins; ///< that are going on; guarded by m_mutex
    std::condition_variable m_firstLoginEnded;
    bool m_isEnding = false; ///< guarded by m_mutex
    std::thread m_reaper;    ///< closes what was idle for too long
};
