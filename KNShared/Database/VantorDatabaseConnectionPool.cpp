#include "Database/VantorDatabaseConnectionPool.h"

#include "Database/VantorTabConnection.h"
#include "Foundation/KNLogHelper.h"

#include <QCoreApplication>

namespace {

/// A client that was idle for less than this is not asked whether it still works: its socket would know.
constexpr std::chrono::seconds TrustedIdleTime(1);

} // namespace

VantorDatabaseConnectionPool *VantorDatabaseConnectionPool::sharedInstance()
{
    // Never destroyed: work of the global queue may outlive main().
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
    , m_caretaker([this] { closeExpired(); })
{
}

VantorDatabaseConnectionPool::~VantorDatabaseConnectionPool()
{
    end();
}

bool VantorDatabaseConnectionPool::executeQuery(const Work &work, const VantorDBC &withConnectionDetails,
                                                KNError *error, bool retryOnError)
{
    KNError failure;
    Client client = borrow(withConnectionDetails, &failure);
    for (bool isLastAttempt = !retryOnError; client; isLastAttempt = true) {
        work(*client, &failure);
        if (client->isConnected()) {
            giveBack(withConnectionDetails, std::move(client));
            break;
        }
        client.reset();
        // What killed this one has most likely killed its like.
        dropIdle(withConnectionDetails);
        if (isLastAttempt || !failure)
            break;
        KNLogHelper::sharedInstance()->logMessage("The lent connection was dead (%@). Trying a fresh one.",
                                                  failure.localizedDescription());
        failure.clear();
        client = connectedClient(withConnectionDetails, &failure);
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

VantorDatabaseConnectionPool::Client VantorDatabaseConnectionPool::connectedClient(const VantorDBC &details,
                                                                                   KNError *error)
{
    Experience experience = experienceWith(details);
    const bool isInformed = experience.learned && !experience.isUnreliable;
    const VantorDBCPtr settings = isInformed ? experience.learned->copy() : details.copy();
    if (experience.isUnreliable)
        settings->setConnectedWithDetails({});
    Client client = settings->createNewClient();
    bool isConnected = client->connect(error);
    if (!isConnected) {
        experience.isUnreliable = true;
        if (isInformed) {
            // The same login has succeeded before, so it is what was learned that does not hold any more.
            // Only then another attempt is safe: wrong passwords lock accounts.
            const VantorDBCPtr uninformed = details.copy();
            uninformed->setConnectedWithDetails({});
            client = uninformed->createNewClient();
            isConnected = client->connect(error);
        }
    }
    if (isConnected)
        experience.learned = client->databaseConnectionDetails().copy();
    remember(experience);
    if (!isConnected)
        return nullptr;
    error->clear();
    return client;
}

std::size_t VantorDatabaseConnectionPool::idleCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_idle.count();
}

void VantorDatabaseConnectionPool::closeIdleClients()
{
    std::vector<VantorIdleClients::Entry> closing; // outside the lock: closing talks to the server
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
    if (m_caretaker.joinable())
        m_caretaker.join();
    closeIdleClients();
}

/// An idle client that still works, or a new one.
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

VantorDatabaseConnectionPool::Experience
VantorDatabaseConnectionPool::experienceWith(const VantorDBC &details) const
{
    const std::lock_guard lock(m_mutex);
    for (const Experience &experience : m_experiences) {
        if (experience.details->opensSameSession(details))
            return experience;
    }
    return {details.copy(), nullptr, false};
}

void VantorDatabaseConnectionPool::remember(const Experience &experience)
{
    const std::lock_guard lock(m_mutex);
    for (Experience &known : m_experiences) {
        if (known.details->opensSameSession(*experience.details)) {
            known = experience;
            return;
        }
    }
    m_experiences.push_back(experience);
}

/// The caretaker's work, to the end of the pool.
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
