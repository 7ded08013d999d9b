#include "Database/VantorTabConnection.h"

#include "Database/VantorChangedPasswords.h"
#include "Foundation/KNFormat.h"

#include <QCoreApplication>

#include <utility>

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
        noteOptions(*client);
        const std::lock_guard lock(m_mutex);
        m_details = details;
    }
    const bool succeeded = !failure;
    if (error)
        *error = failure;
    return succeeded;
}

/// Returns the session's client, or one of a new session; null with an error.
std::shared_ptr<VantorDatabaseClient> VantorTabConnection::connectedClient(KNError *error)
{
    const bool isReplaced = this->client() != nullptr;
    if (const auto client = this->client()) {
        if (client->isConnected() && !client->hasHungUp())
            return client;
        if (const QStringList lost = losses(); !lost.isEmpty()) {
            *error = KNError(
                SessionErrorDomain, SessionLost,
                KNFormat(QCoreApplication::translate("VantorTabConnection", "The session was lost: %@."),
                         lost.join(QStringLiteral("; "))));
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
    if (client)
        restoreOptions(*client, error);
    if (!client || *error)
        return nullptr; // the lost client stays, so that the next run tries again
    const std::lock_guard lock(m_mutex);
    m_client = client;
    m_state = {.hasOptions = !m_optionsBatch.isNull()};
    if (isReplaced)
        m_notice =
            KNFormat(m_optionsBatch.isNull()
                         ? QCoreApplication::translate(
                               "VantorTabConnection",
                               "The connection was lost. A new one was opened in the database \"%@\".")
                         : QCoreApplication::translate(
                               "VantorTabConnection",
                               "The connection was lost. A new one was opened in the database \"%@\", with "
                               "the SET options of the old one."),
                     client->currentDatabase());
    return client;
}

/// Asks for the session's options after a run that may have changed them, and after no other: the user's next
/// statement may ask how many rows the one before affected. Options that are not known may be those that turn
/// the answer into something else, such as SHOWPLAN_TEXT.
void VantorTabConnection::noteOptions(VantorDatabaseClient &client)
{
    {
        const std::lock_guard lock(m_mutex);
        const bool mayHaveChanged = std::exchange(m_mayHaveChangedOptions, false);
        if (!mayHaveChanged || m_state.hasUnknownOptions || !client.isConnected())
            return;
    }
    KNError ignored;
    const QString batch = client.optionsBatch(&ignored);
    const std::lock_guard lock(m_mutex);
    m_optionsBatch = ignored ? QString() : batch;
}

void VantorTabConnection::restoreOptions(VantorDatabaseClient &client, KNError *error)
{
    QString batch;
    {
        const std::lock_guard lock(m_mutex);
        batch = m_optionsBatch;
    }
    if (!batch.isNull())
        client.executeNonQuery(batch, error);
}

QString VantorTabConnection::takeNotice()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_notice, QString());
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
    m_mayHaveChangedOptions |= state.hasOptions;
    m_state.hasUnknownOptions |= state.hasUnknownOptions;
    m_state.beginsTransactions |= state.beginsTransactions;
}

bool VantorTabConnection::beginsTransactions() const
{
    const std::lock_guard lock(m_mutex);
    return m_state.beginsTransactions;
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
    if (m_state.hasUnknownOptions)
        m_optionsBatch.clear();
    m_state = {.hasOptions = !m_optionsBatch.isNull()};
}

bool VantorTabConnection::hasSessionState() const
{
    return !losses().isEmpty();
}

QStringList VantorTabConnection::losses() const
{
    const std::lock_guard lock(m_mutex);
    QStringList losses;
    if (m_state.hasTransaction)
        losses.append(QCoreApplication::translate("VantorTabConnection",
                                                  "its open transaction was rolled back by the server"));
    if (m_state.hasTemporaryTables)
        losses.append(QCoreApplication::translate("VantorTabConnection", "its temporary tables are gone"));
    if (m_state.hasOptions && (m_state.hasUnknownOptions || m_optionsBatch.isNull()))
        losses.append(QCoreApplication::translate("VantorTabConnection", "its SET options are gone"));
    return losses;
}

bool VantorTabConnection::isConnected() const
{
    const auto client = this->client();
    return client && client->isConnected();
}

int VantorTabConnection::openIdleDescriptor() const
{
    const auto client = this->client();
    return client ? client->openIdleDescriptor() : -1;
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
