#include "Database/VantorDatabaseConnectionPool.h"

#include "Database/VantorChangedPasswords.h"
#include "Database/VantorLoginProblem.h"
#include "Database/VantorTabConnection.h"
#include "Foundation/KNLogHelper.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

/// Clients idle for less than this are not probed: the socket state would show a lost connection.
constexpr std::chrono::seconds TrustedIdleTime(1);

} // namespace

/// A login in progress of an account that has not logged in yet.
struct VantorDatabaseConnectionPool::FirstLogin
{
    const VantorDBC &details; ///< valid until isOver
    bool isOver = false;      ///< guarded by the pool's mutex, as the rest
    KNError error = {};
};

/// Serialises the first logins of an account: later ones learn from the first whether the password is correct
/// and the server answers.
class VantorDatabaseConnectionPool::LoginTurn
{
public:
    LoginTurn(VantorDatabaseConnectionPool &pool, const VantorDBC &details)
        : m_pool(pool)
    {
        std::unique_lock lock(m_pool.m_mutex);
        while (!m_pool.hasLoggedIn(details)) {
            const auto other =
                std::find_if(m_pool.m_firstLogins.begin(), m_pool.m_firstLogins.end(),
                             [&](const auto &login) { return login->details.usesSameLogin(details); });
            if (other == m_pool.m_firstLogins.end()) {
                m_own = std::make_shared<FirstLogin>(FirstLogin{details});
                m_pool.m_firstLogins.push_back(m_own);
                return;
            }
            const std::shared_ptr<FirstLogin> login = *other;
            m_pool.m_firstLoginEnded.wait(lock, [&] { return login->isOver; });
            if (VantorLoginProblemOf(login->error) == VantorLoginProblem::ServerUnreachable) {
                m_error = login->error;
                return;
            }
        }
    }
    ~LoginTurn()
    {
        if (!m_own)
            return;
        {
            const std::lock_guard lock(m_pool.m_mutex);
            m_own->isOver = true;
            m_own->error = m_error;
            std::erase(m_pool.m_firstLogins, m_own);
        }
        m_pool.m_firstLoginEnded.notify_all();
    }
    LoginTurn(const LoginTurn &) = delete;
    LoginTurn &operator=(const LoginTurn &) = delete;

    /// The error of the login waited for, if another login would fail in the same way.
    const KNError &error() const { return m_error; }
    /// Records the failure of this login.
    void setError(const KNError &error) { m_error = error; }

private:
    VantorDatabaseConnectionPool &m_pool;
    std::shared_ptr<FirstLogin> m_own; ///< null if no thread waits for this login
    KNError m_error;
};

VantorDatabaseConnectionPool *VantorDatabaseConnectionPool::sharedInstance()
{
    // Never destroyed: tasks of the global queue may outlive main().
    static auto *const pool = [] {
        qAddPostRoutine([] { sharedInstance()->end(); });
        return new VantorDatabaseConnectionPool;
    }();
    return pool;
}

VantorDatabaseConnectionPool::VantorDatabaseConnectionPool()
    : VantorDatabaseConnectionPool(Limits())
{
}

VantorDatabaseConnectionPool::VantorDatabaseConnectionPool(Limits limits)
    : m_limits(limits)
    , m_reaper([this] { closeExpired(); })
{
}

VantorDatabaseConnectionPool::~VantorDatabaseConnectionPool()
{
    end();
}

bool VantorDatabaseConnectionPool::executeQuery(const Work &work, const VantorDBC &withConnectionDetails,
                                                KNError *error, bool retryOnError)
{
    const VantorDBCPtr changed = VantorChangedPasswords::shared().applied(withConnectionDetails);
    const VantorDBC &details = changed ? *changed : withConnectionDetails;
    KNError failure;
    Client client = borrow(details, &failure);
    for (bool isLastAttempt = !retryOnError; client; isLastAttempt = true) {
        work(*client, &failure);
        if (client->isConnected()) {
            giveBack(details, std::move(client));
            break;
        }
        client.reset();
        // Other idle connections to the same server have most likely failed, too.
        dropIdle(details);
        if (isLastAttempt || !failure)
            break;
        KNLogHelper::sharedInstance()->logMessage("The lent connection was dead (%@). Trying a fresh one.",
                                                  failure.localizedDescription());
        failure.clear();
        client = connectedClient(details, &failure);
    }
    const bool succeeded = !failure;
    if (error)
        *error = failure;
    return succeeded;
}

std::unique_ptr<VantorTabConnection> VantorDatabaseConnectionPool::connectionForTab(const VantorDBC &details)
{
    return std::make_unique<VantorTabConnection>(*this, details);
}

VantorDatabaseConnectionPool::Client
VantorDatabaseConnectionPool::connectedClient(const VantorDBC &details, KNError *error,
                                              const Connecting &connecting)
{
    LoginTurn turn(*this, details);
    if (turn.error()) {
        *error = turn.error();
        return nullptr;
    }
    if (isRefused(details, error))
        return nullptr;
    Client client = connect(details, error, connecting);
    if (client) {
        error->clear();
    } else {
        rememberRefusal(details, *error);
        turn.setError(*error);
    }
    return client;
}

bool VantorDatabaseConnectionPool::connectClient(VantorDatabaseClient &client, KNError *error,
                                                 const Connecting &connecting)
{
    if (connecting)
        connecting(&client);
    const bool isConnected = client.connect(error);
    if (connecting)
        connecting(nullptr);
    return isConnected;
}

VantorDatabaseConnectionPool::Client
VantorDatabaseConnectionPool::connect(const VantorDBC &details, KNError *error, const Connecting &connecting)
{
    LoginHints hints = loginHintsFor(details);
    const bool isInformed = hints.settings && !hints.isUnreliable;
    const VantorDBCPtr settings = isInformed ? hints.settings->copy() : details.copy();
    if (hints.isUnreliable)
        settings->setConnectedWithDetails({});
    Client client = settings->createNewClient();
    bool isConnected = connectClient(*client, error, connecting);
    if (!isConnected && VantorLoginProblemOf(*error) == VantorLoginProblem::Unknown) {
        hints.isUnreliable = true;
        if (isInformed) {
            // The same login succeeded before, so the hints are no longer valid.
            const VantorDBCPtr uninformed = details.copy();
            uninformed->setConnectedWithDetails({});
            client = uninformed->createNewClient();
            isConnected = connectClient(*client, error, connecting);
        }
    }
    if (isConnected) {
        hints.settings = client->databaseConnectionDetails().copy();
        rememberEncryption(details, client->encryption());
    }
    remember(hints);
    return isConnected ? std::move(client) : nullptr;
}

void VantorDatabaseConnectionPool::keep(const VantorDBC &details, Client client)
{
    VantorChangedPasswords::shared().remove(details); // this password is the valid one
    giveBack(details, std::move(client));
}

void VantorDatabaseConnectionPool::rememberEncryption(const VantorDBC &details, VantorEncryption encryption)
{
    const std::lock_guard lock(m_mutex);
    for (Protection &known : m_protections) {
        if (known.details->usesSameLogin(details) &&
            known.details->sessionParameters() == details.sessionParameters()) {
            known.weakest = std::min(known.weakest, encryption);
            return;
        }
    }
    m_protections.push_back({details.copy(), encryption});
}

VantorEncryption VantorDatabaseConnectionPool::encryptionOf(const VantorDBC &ofDetails) const
{
    const VantorDBCPtr changed = VantorChangedPasswords::shared().applied(ofDetails);
    const VantorDBC &details = changed ? *changed : ofDetails;
    const std::lock_guard lock(m_mutex);
    for (const Protection &known : m_protections) {
        if (known.details->usesSameLogin(details) &&
            known.details->sessionParameters() == details.sessionParameters())
            return known.weakest;
    }
    return VantorEncryption::Unknown;
}

void VantorDatabaseConnectionPool::forgetRefusals(const VantorDBC &details)
{
    const VantorDBCPtr changed = VantorChangedPasswords::shared().applied(details);
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_refusals, [&](const Refusal &refusal) {
        return refusal.details->usesSameLogin(details) ||
               (changed && refusal.details->usesSameLogin(*changed));
    });
}

bool VantorDatabaseConnectionPool::isRefused(const VantorDBC &details, KNError *error) const
{
    const std::lock_guard lock(m_mutex);
    for (const Refusal &refusal : m_refusals) {
        const bool isLogin = VantorLoginProblemOf(refusal.error) == VantorLoginProblem::LoginRefused;
        if (isLogin ? refusal.details->usesSameLogin(details) : refusal.details->opensSameSession(details)) {
            *error = refusal.error;
            return true;
        }
    }
    return false;
}

void VantorDatabaseConnectionPool::rememberRefusal(const VantorDBC &details, const KNError &error)
{
    const VantorLoginProblem problem = VantorLoginProblemOf(error);
    if (problem != VantorLoginProblem::LoginRefused && problem != VantorLoginProblem::DatabaseRefused)
        return;
    const std::lock_guard lock(m_mutex);
    m_refusals.push_back({details.copy(), error});
    if (problem != VantorLoginProblem::LoginRefused)
        return;
    // The password has changed since: serialise the next logins again.
    for (LoginHints &hints : m_loginHints) {
        if (hints.details->usesSameLogin(details))
            hints.settings = nullptr;
    }
}

/// Whether the account has logged in before. The caller must hold the mutex.
bool VantorDatabaseConnectionPool::hasLoggedIn(const VantorDBC &details) const
{
    return std::any_of(m_loginHints.begin(), m_loginHints.end(), [&](const LoginHints &hints) {
        return hints.settings && hints.details->usesSameLogin(details);
    });
}

std::size_t VantorDatabaseConnectionPool::idleCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_idle.count();
}

void VantorDatabaseConnectionPool::closeIdleClients()
{
    std::vector<VantorIdleClients::Entry> closing; // destroyed without the lock: closing accesses the server
    const std::lock_guard lock(m_mutex);
    closing = m_idle.takeAll();
}

void VantorDatabaseConnectionPool::end()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    if (m_reaper.joinable())
        m_reaper.join();
    closeIdleClients();
}

/// Returns an idle client that still works, or a new one.
VantorDatabaseConnectionPool::Client VantorDatabaseConnectionPool::borrow(const VantorDBC &details,
                                                                          KNError *error)
{
    for (;;) {
        VantorIdleClients::Entry entry;
        {
            const std::lock_guard lock(m_mutex);
            entry = m_idle.take(details);
        }
        if (!entry.client)
            return connectedClient(details, error);
        const bool isTrusted = VantorIdleClients::Clock::now() - entry.since < TrustedIdleTime;
        if (!entry.client->hasHungUp() && (isTrusted || entry.client->resetSession()))
            return std::move(entry.client);
    }
}

void VantorDatabaseConnectionPool::giveBack(const VantorDBC &details, Client client)
{
    const VantorDBCPtr entryDetails = details.copy();
    client->prepareForPool(*entryDetails, false);
    if (!client->resetSession())
        return;
    std::vector<VantorIdleClients::Entry> surplus;
    {
        const std::lock_guard lock(m_mutex);
        if (m_isEnding)
            return;
        m_idle.add({entryDetails, std::move(client), VantorIdleClients::Clock::now()});
        surplus = m_idle.takeSurplus(m_limits.idlePerConnection, m_limits.idle);
    }
    m_changed.notify_all();
}

void VantorDatabaseConnectionPool::dropIdle(const VantorDBC &details)
{
    std::vector<VantorIdleClients::Entry> closing;
    const std::lock_guard lock(m_mutex);
    closing = m_idle.takeAll(details);
}

VantorDatabaseConnectionPool::LoginHints
VantorDatabaseConnectionPool::loginHintsFor(const VantorDBC &details) const
{
    const std::lock_guard lock(m_mutex);
    for (const LoginHints &hints : m_loginHints) {
        if (hints.details->opensSameSession(details))
            return hints;
    }
    return {details.copy(), nullptr, false};
}

void VantorDatabaseConnectionPool::remember(const LoginHints &hints)
{
    const std::lock_guard lock(m_mutex);
    for (LoginHints &known : m_loginHints) {
        if (known.details->opensSameSession(*hints.details)) {
            known = hints;
            return;
        }
    }
    m_loginHints.push_back(hints);
}

/// Thread function of the reaper: closes expired idle clients until the pool ends.
void VantorDatabaseConnectionPool::closeExpired()
{
    std::unique_lock lock(m_mutex);
    while (!m_isEnding) {
        if (m_idle.count() == 0)
            m_changed.wait(lock);
        else
            m_changed.wait_until(lock, m_idle.oldest() + m_limits.idleTime);
        auto expired = m_idle.takeExpired(VantorIdleClients::Clock::now() - m_limits.idleTime);
        lock.unlock();
        expired.clear();
        lock.lock();
    }
}
