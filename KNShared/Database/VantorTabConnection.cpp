#include "Database/VantorTabConnection.h"

VantorTabConnection::VantorTabConnection(VantorDatabaseConnectionPool &pool, const VantorDBC &details)
    : m_pool(pool)
    , m_details(details.copy())
{
}

VantorTabConnection::~VantorTabConnection() = default;

bool VantorTabConnection::executeQuery(const VantorDatabaseConnectionPool::Work &work, KNError *error)
{
    KNError failure;
    std::shared_ptr<VantorDatabaseClient> client = this->client();
    if (!client || !client->isConnected() || client->hasHungUp()) {
        client = m_pool.connectedClient(*connectionDetails(), &failure);
        const std::lock_guard lock(m_mutex);
        m_client = client;
    }
    if (client) {
        work(*client, &failure);
        const VantorDBCPtr details = connectionDetails();
        client->prepareForPool(*details, true);
        const std::lock_guard lock(m_mutex);
        m_details = details;
    }
    const bool succeeded = !failure;
    if (error)
        *error = failure;
    return succeeded;
}

bool VantorTabConnection::cancelCurrentQuery(KNError *error)
{
    const auto client = this->client();
    return !client || client->cancelCurrentQuery(error);
}

bool VantorTabConnection::isConnected() const
{
    const auto client = this->client();
    return client && client->isConnected();
}

VantorDBCPtr VantorTabConnection::connectionDetails() const
{
    const std::lock_guard lock(m_mutex);
    return m_details->copy();
}

std::shared_ptr<VantorDatabaseClient> VantorTabConnection::client() const
{
    const std::lock_guard lock(m_mutex);
    return m_client;
}
