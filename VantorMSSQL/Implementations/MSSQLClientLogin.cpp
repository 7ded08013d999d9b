#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLClientCallbacks.h"
#include "Implementations/MSSQLLoginError.h"
#include "Implementations/MSSQLLoginFile.h"
#include "Implementations/MSSQLLoginWatch.h"
#include "Implementations/MSSQLMessageList.h"

#include <sybdb.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>

namespace {

struct LoginDeleter
{
    void operator()(LOGINREC *login) const { dbloginfree(login); }
};

constexpr qsizetype LongestLoginText = 128; ///< bytes that db-lib accepts for each text of a login

/// Serialises every login of the process.
KNSemaphore &connectSemaphore()
{
    static KNSemaphore semaphore(QStringLiteral("com.quorvex.vantor.mssql.connectSemaphore"));
    return semaphore;
}

/// Waits until this login may start; false if it is cancelled first. The wait does not count towards the
/// login's time limit: it depends on earlier logins, whose time is bounded, not on this login's server.
bool waitForTurn(MSSQLCancellation &cancellation)
{
    constexpr std::chrono::milliseconds Step(50);
    const auto begin = MSSQLCancellation::Clock::now();
    while (!connectSemaphore().waitFor(Step)) {
        if (cancellation.isRequested())
            return false;
    }
    if (cancellation.hasDeadline())
        cancellation.setDeadline(cancellation.deadline() + (MSSQLCancellation::Clock::now() - begin));
    return true;
}

/// The right to log in. Released with the object, or earlier if db-lib does not return.
class Turn
{
public:
    Turn() = default;
    ~Turn() { end(); }
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    /// Lets the next login start. Any thread.
    void end()
    {
        if (!m_isOver.exchange(true))
            connectSemaphore().signal();
    }

private:
    std::atomic<bool> m_isOver = false;
};

/// Removes environment variables that would redirect db-lib to another server or make it write passwords to a
/// file. Logins are serialised where this is called; once removed, nothing is written any more.
void shieldFromEnvironment()
{
    for (const char *variable : {"TDSVER", "TDSPORT", "TDSHOST", "TDSDUMP", "TDSDUMPCONFIG"})
        unsetenv(variable);
}

/// Describes why a text cannot be part of a login; null if it can.
QString problemOfLoginText(const char *name, const QString &text)
{
    if (text.contains(QChar::Null))
        return KNFormat("The %@ contains a NUL character, which no login can carry.", name);
    const qsizetype size = text.toUtf8().size();
    if (size > LongestLoginText)
        return KNFormat("The %@ has %ld bytes in UTF-8. A login can carry %ld.", name, size,
                        LongestLoginText);
    return QString();
}

KNError libraryError(const char *what)
{
    return MSSQLLoginError::hopeless(KNFormat("The database library does not accept the login's %@.", what));
}

} // namespace

bool MSSQLClient::fitsLogin(const QString &text)
{
    return text.toUtf8().size() <= LongestLoginText;
}

/// False, with an error, if db-lib cannot transmit the user name or the password. A database with a long name
/// is selected after the login.
bool MSSQLClient::checkLoginTexts(KNError *error) const
{
    QString problem = problemOfLoginText("user name", m_databaseConnectionDetails->username());
    if (problem.isNull())
        problem = problemOfLoginText("password", m_databaseConnectionDetails->password());
    if (problem.isNull() && m_databaseConnectionDetails->database().contains(QChar::Null))
        problem = QStringLiteral("The name of the database contains a NUL character.");
    if (problem.isNull())
        return true;
    *error = MSSQLLoginError::hopeless(problem);
    return false;
}

/// Logs in, and tries once more with the completed user name on Azure. False if no connection was opened; the
/// error is set only if the reason is not in the messages.
bool MSSQLClient::logIn(bool useNTLMv2, int tdsVersion, const MSSQLLoginFile &file,
                        const MSSQLServerAddress &server, KNError *error)
{
    MSSQLDatabaseConnectionDetails *details = m_databaseConnectionDetails.get();
    dbsetversion(DBVERSION_UNKNOWN); // fails with an "Illegal version" that has no effect
    const std::unique_ptr<LOGINREC, LoginDeleter> login(dblogin());
    MSSQLMessageList::sharedInstance().clearMessage();
    if (!login) {
        *error = libraryError("record");
        return false;
    }
    if (const char *refused = fillLogin(login.get(), useNTLMv2, tdsVersion)) {
        *error = libraryError(refused);
        return false;
    }
    error->clear();
    if (openHandle(login.get(), file, server))
        return true;
    const QString completed = azureUserName(details->username(), details->host());
    if (completed.isNull() || m_cancellation.isRequested() || m_cancellation.isDeadlineOver())
        return false;
    KNLogHelper::sharedInstance()->logMessage(
        "Failed to login into Azure. Attempting to add suffix to username.");
    MSSQLMessageList::sharedInstance().clearMessage();
    details->setUsername(completed);
    if (!checkLoginTexts(error))
        return false;
    if (DBSETLUSER(login.get(), completed.toUtf8().constData()) != SUCCEED) {
        *error = libraryError("user name");
        return false;
    }
    return openHandle(login.get(), file, server);
}

/// Returns the name of the setting that db-lib refused; null if it accepted all.
const char *MSSQLClient::fillLogin(LOGINREC *login, bool useNTLMv2, int tdsVersion) const
{
    const MSSQLDatabaseConnectionDetails &details = *m_databaseConnectionDetails;
    if (DBSETLCHARSET(login, "UTF-8") != SUCCEED)
        return "character set";
    if (DBSETLPWD(login, details.password().toUtf8().constData()) != SUCCEED)
        return "password";
    if (DBSETLUSER(login, details.username().toUtf8().constData()) != SUCCEED)
        return "user name";
    if (dbsetlbool(login, 1, DBSETBCP) != SUCCEED)
        return "bulk copy flag";
    if (DBSETLAPP(login, "Vantor for MSSQL (https://vantor.example)") != SUCCEED)
        return "application name";
    if (dbsetlversion(login, static_cast<BYTE>(tdsVersion)) != SUCCEED)
        return "protocol version";
    if (dbsetlbool(login, useNTLMv2, DBSETNTLMV2) != SUCCEED)
        return "NTLMv2 flag";
    if (dbsetlbool(login, details.isReadOnlyIntended(), DBSETREADONLY) != SUCCEED)
        return "application intent";
    const QString database = details.database();
    if (!database.isEmpty() && fitsLogin(database) &&
        DBSETLDBNAME(login, database.toUtf8().constData()) != SUCCEED)
        return "database";
    return nullptr;
}

bool MSSQLClient::openHandle(LOGINREC *login, const MSSQLLoginFile &file, const MSSQLServerAddress &server)
{
    if (!waitForTurn(m_cancellation))
        return false;
    Turn turn;
    shieldFromEnvironment();
    dbsetifile(file.path().data());
    // db-lib's time-out is process-wide; logins are serialised here, so each uses its own.
    const auto left = std::chrono::ceil<std::chrono::seconds>(loginTimeLeft());
    if (dbsetlogintime(static_cast<int>(std::max<qint64>(1, left.count()))) != SUCCEED)
        return false;
    DBPROCESS *handle = nullptr;
    {
        const MSSQLLoginWatch watch(m_cancellation, server.port, [&turn] { turn.end(); });
        handle = tdsdbopen(login, file.entry().constData(), 1);
    }
    if (handle) {
        dbsetuserdata(handle, reinterpret_cast<BYTE *>(&m_cancellation));
        dbsetinterrupt(handle, check_interrupt, handle_interrupt);
    }
    const KNSemaphoreLocker locker(m_dbProcSemaphore);
    m_dbProc = handle;
    setSocket(handle ? MSSQLSocketReference(DBIORDESC(handle)) : MSSQLSocketReference());
    return handle != nullptr;
}
