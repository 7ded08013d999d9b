#include "Implementations/MSSQLClient.h"

#include <sybdb.h>

#include <poll.h>

bool MSSQLClient::hasHungUp() const
{
    const KNSemaphoreLocker handle(m_dbProcSemaphore);
    if (isLost())
        return true;
    // Between runs a server sends nothing unless it closes the connection.
    pollfd socket = {DBIORDESC(m_dbProc), POLLIN | POLLRDHUP, 0};
    return poll(&socket, 1, 0) != 0;
}

bool MSSQLClient::resetSession()
{
    constexpr std::chrono::seconds Bound(5);
    KNError error;
    m_cancellation.setDeadline(MSSQLCancellation::Clock::now() + Bound);
    executeNonQuery(QStringLiteral("IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION"), &error);
    m_cancellation.clearDeadline();
    return !error && isConnected();
}

void MSSQLClient::prepareForPool(VantorDBC &details, bool isUserQuery)
{
    if (!isUserQuery)
        return;
    const KNSemaphoreLocker handle(m_dbProcSemaphore);
    if (!m_dbProc)
        return;
    const QString current = QString::fromUtf8(dbname(m_dbProc));
    const QString wanted = m_databaseConnectionDetails->database();
    if (wanted.isEmpty() && current.compare(QLatin1String("master"), Qt::CaseInsensitive) == 0)
        return;
    if (current.compare(wanted, Qt::CaseInsensitive) != 0) {
        m_databaseConnectionDetails->setDatabase(current);
        details.setDatabase(current);
    }
}
