#include "Database/VantorTabConnection.h"

#include "Database/VantorChangedPasswords.h"
#include "Foundation/KNFormat.h"

namespace {

const QString SessionErrorDomain = QStringLiteral("com.quorvex.vantor.session");
constexpr int SessionLost = 1;

} // namespace

VantorTabConnection::VantorTabConnection(VantorDatabaseConnectionPool &pool, const VantorDBC &details)
    : m_pool(pool)
    , m_details(details.copy())
{
}

VantorTabConnection::~VantorTabConnection() = default;

bool VantorTabConnection::executeQuery(const VantorDatabaseConnectionPool::Work &work, KNError *error)
{
    KNError failure;
    const std::shared_ptr<VantorDatabaseClient> client = connectedClient(&failure);
    if (client) {
        work(*client, &failure);
        const VantorDBCPtr details = connectionDetails();
        client->prepareForPool(*details, true);
        const QString database = client->currentDatabase();
        const std::lock_guard lock(m_mutex);
        m_details = details;
        m_lastDatabase = database;
    }
    const bool succeeded = !failure;
    if (error)
        *error = failure;
    return succeeded;
}

/// Returns the session's client, or one of a new session; null with an error.
std::shared_ptr<VantorDatabaseClient> VantorTabConnection::connectedClient(KNError *error)
{
    if (const auto client = this->client()) {
        if (client->isConnected() && !client->hasHungUp())
            return client;
        if (const QStringList lost = losses(); !lost.isEmpty()) {
            *error = KNError(SessionErrorDomain, SessionLost,
                             KNFormat("The session was lost: %@.", lost.join(QStringLiteral("; "))));
            return nullptr;
        }
    }
    VantorDBCPtr details = connectionDetails();
    if (const VantorDBCPtr changed = VantorChangedPasswords::shared().applied(*details))
        details = changed;
    m_pool.forgetRefusals(*details); // each run is a retry that the user requested
    const std::shared_ptr<VantorDatabaseClient> client =
        m_pool.connectedClient(*details, error, [this](VantorDatabaseClient *connecting) {
            const std::lock_guard lock(m_connectingMutex);
            m_connecting = connecting;
        });
    const QString database = client ? client->currentDatabase() : QString();
    const std::lock_guard lock(m_mutex);
    m_client = client;
    m_state = {};
    m_firstDatabase = m_lastDatabase = database;
    return client;
}

bool VantorTabConnection::cancelCurrentQuery(KNError *error)
{
    {
        const std::lock_guard lock(m_connectingMutex);
        if (m_connecting)
            return m_connecting->cancelCurrentQuery(error);
    }
    const auto client = this->client();
    return !client || client->cancelCurrentQuery(error);
}

void VantorTabConnection::addSessionState(const VantorSessionState &state)
{
    const std::lock_guard lock(m_mutex);
    m_state.hasTransaction |= state.hasTransaction;
    m_state.hasTemporaryTables |= state.hasTemporaryTables;
    m_state.hasOptions |= state.hasOptions;
}

void VantorTabConnection::setHasTransaction(bool hasTransaction)
{
    const std::lock_guard lock(m_mutex);
    m_state.hasTransaction = hasTransaction;
}

bool VantorTabConnection::isSessionLost(const KNError &error)
{
    return error.code() == SessionLost && error.domain() == SessionErrorDomain;
}

void VantorTabConnection::beginNewSession()
{
    const std::lock_guard lock(m_mutex);
    m_state = {};
    m_firstDatabase = m_lastDatabase;
}

bool VantorTabConnection::hasSessionState() const
{
    return !losses().isEmpty();
}

/// Describes the parts of the session's state to the user.
QStringList VantorTabConnection::losses() const
{
    const std::lock_guard lock(m_mutex);
    QStringList losses;
    if (m_state.hasTransaction)
        losses.append(QStringLiteral("its open transaction was rolled back by the server"));
    if (m_state.hasTemporaryTables)
        losses.append(QStringLiteral("its temporary tables are gone"));
    if (m_state.hasOptions)
        losses.append(QStringLiteral("its SET options are gone"));
    if (m_lastDatabase.compare(m_firstDatabase, Qt::CaseInsensitive) != 0)
        losses.append(KNFormat("it was in the database \"%@\", in which a new one begins", m_lastDatabase));
    return losses;
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
