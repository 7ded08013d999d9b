#include "Implementations/MSSQLClient.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLClientCallbacks.h"
#include "Implementations/MSSQLHandleScope.h"
#include "Implementations/MSSQLMessageList.h"
#include "Implementations/MSSQLTraceFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <sybdb.h>

/// Exported by db-lib without a header. Starts the protocol trace in a file; 0 on failure.
extern "C" int tdsdump_open(const char *filename);

namespace {

/// How long a cancelled server may continue to send before the guard checks it.
constexpr std::chrono::milliseconds FloodPatience(2000);

std::shared_ptr<MSSQLDatabaseConnectionDetails> mssqlDetails(const VantorDBCPtr &details)
{
    auto mssql = std::dynamic_pointer_cast<MSSQLDatabaseConnectionDetails>(details);
    KNAssert(mssql || !details, "Invalid class.", "Implementations/MSSQLClient");
    return mssql;
}

} // namespace

MSSQLClient::MSSQLClient(const VantorDBCPtr &databaseConnectionDetails,
                         MSSQLCancellation::Patience cancelPatience)
    : m_databaseConnectionDetails(mssqlDetails(databaseConnectionDetails))
    , m_dbProcSemaphore(QStringLiteral("com.quorvex.vantor.mssql.dbProcSemaphore"))
    , m_cancellation(cancelPatience)
{
    initializeOnce();
}

MSSQLClient::~MSSQLClient()
{
    disconnect();
    KNLogHelper::sharedInstance()->logMessage("MSSQLClient::Dealloc");
}

void MSSQLClient::initializeOnce()
{
    static std::once_flag once;
    std::call_once(once, [] {
        dbinit();
        dberrhandle(interruptible_err_handler);
        dbmsghandle(msg_handler);
    });
}

bool MSSQLClient::isConnected() const
{
    // The handle's holder is using the connection, so it counts as open.
    if (!m_dbProcSemaphore.tryWait())
        return true;
    const bool isOpen = m_dbProc;
    const bool isDead = isOpen && dbdead(m_dbProc);
    m_dbProcSemaphore.signal();
    if (!isOpen) {
        KNLogHelper::sharedInstance()->logMessage("MSSQL::isConnected no dbProc.");
        return false;
    }
    if (isDead) {
        KNLogHelper::sharedInstance()->logMessage("MSSQL::isConnected dbdead.");
        return false;
    }
    return true;
}

bool MSSQLClient::connect(KNError *error, KNSSHTunnelDelegate *)
{
    return connect(error);
}

void MSSQLClient::disconnect()
{
    KNSemaphoreLocker handle(m_dbProcSemaphore);
    setSocket({});
    if (m_dbProc)
        dbclose(m_dbProc);
    m_dbProc = nullptr;
    handle.release();
    m_tunnel.reset();
}

MSSQLSocketReference MSSQLClient::socket() const
{
    const std::lock_guard lock(m_socketMutex);
    return m_socket;
}

void MSSQLClient::setSocket(const MSSQLSocketReference &socket)
{
    const std::lock_guard lock(m_socketMutex);
    m_socket = socket;
}

bool MSSQLClient::beginTransaction(KNError *error)
{
    executeNonQuery(QStringLiteral("BEGIN TRANSACTION"), error);
    return !error->isSet();
}

bool MSSQLClient::commitTransaction(KNError *error)
{
    executeNonQuery(QStringLiteral("COMMIT TRANSACTION"), error);
    return !error->isSet();
}

bool MSSQLClient::rollbackTransaction(KNError *error)
{
    executeNonQuery(QStringLiteral("ROLLBACK TRANSACTION"), error);
    return !error->isSet();
}

bool MSSQLClient::cancelCurrentQuery(KNError *error)
{
    if (!m_cancellation.request())
        return true;
    const MSSQLFloodGuard guard(socket(), FloodPatience);
    // Interrupt the running thread until it releases the handle: it may be waiting for the server inside
    // db-lib.
    do {
        m_cancellation.interruptLibrary();
    } while (!m_dbProcSemaphore.waitFor(std::chrono::milliseconds(5)));
    m_dbProcSemaphore.signal();

    const MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
    // A run that has ended in the meantime needs no stop, and a newer run must not be stopped.
    const bool stopped = !m_cancellation.isRequested() || stopAtServer();
    // Messages that arrived during the stop belong to no run of this thread.
    MSSQLMessageList::sharedInstance().clearMessage();
    if (!stopped)
        *error = KNError(QStringLiteral(""), 0, QStringLiteral("Failed to cancel query."));
    return stopped;
}

/// Sends a cancel and waits for the acknowledgement; false if the server did not acknowledge it, which loses
/// the connection. The handle must be held.
bool MSSQLClient::stopAtServer()
{
    if (!m_dbProc || dbdead(m_dbProc))
        return !m_dbProc;
    m_cancellation.attentionSent();
    const MSSQLFloodGuard guard(socket(), FloodPatience);
    // dbcancel() reports success even if the server has not answered.
    return dbcancel(m_dbProc) == SUCCEED && !dbdead(m_dbProc);
}

QString MSSQLClient::enableFreeTDSLogging()
{
    const QString logFile = KNLogHelper::sharedInstance()->filePath();
    const QString path = KNFormat("%@/%@/freetds.pid%d.log", QFileInfo(logFile).path(),
                                  QCoreApplication::applicationName(), QCoreApplication::applicationPid());
    const QString filtered = MSSQLTraceFile::openFiltered(path);
    const int result = filtered.isNull() ? 0 : tdsdump_open(QFile::encodeName(filtered).constData());
    KNLogHelper::sharedInstance()->logMessage("Open LogFile (%@) result was %d", path, result);
    return result == 0 ? QString() : path;
}
