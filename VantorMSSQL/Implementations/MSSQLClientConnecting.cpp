#include "Foundation/KNAssert.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/MachTimer.h"
#include "Implementations/MSSQLBytesWritten.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLClientCallbacks.h"
#include "Implementations/MSSQLEncryptionCheck.h"
#include "Implementations/MSSQLLoginError.h"
#include "Implementations/MSSQLLoginFile.h"
#include "Implementations/MSSQLMessageList.h"
#include "SQL/KNQuerySplitter.h"
#include "SSH/KNSSHCommand.h"
#include "SSH/KNSSHTunnel.h"

#include <sybdb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

using namespace MSSQLLoginError;
const QString SourcePath = QStringLiteral("Implementations/MSSQLClient");

struct LoginDeleter
{
    void operator()(LOGINREC *login) const { dbloginfree(login); }
};
using Login = std::unique_ptr<LOGINREC, LoginDeleter>;

/// Serialises every login of the process.
KNSemaphore &connectSemaphore()
{
    static KNSemaphore semaphore(QStringLiteral("com.quorvex.vantor.mssql.connectSemaphore"));
    return semaphore;
}

const char *yesOrNo(bool flag)
{
    return flag ? "YES" : "NO";
}

/// Variables with which db-lib would let itself be sent elsewhere, or write passwords to a file. Logins are
/// serialised where this is called; once gone, nothing is written here any more.
void shieldFromEnvironment()
{
    for (const char *variable : {"TDSVER", "TDSPORT", "TDSHOST", "TDSDUMP", "TDSDUMPCONFIG"})
        unsetenv(variable);
}

/// The login failure from what the server and db-lib said.
KNError loginErrorFromMessages(const QList<DatabaseMessage> &messages)
{
    QStringList texts;
    for (const DatabaseMessage &message : messages) {
        const QString text =
            KNFormat("%@ (Msg %d, Level %d).", message.msgtext, message.msgno, message.severity);
        if (!texts.contains(text))
            texts.append(text);
    }
    if (texts.isEmpty())
        KNLogHelper::sharedInstance()->logMessage("Failed to login. Unknown reason. %ld messages. (%@).",
                                                  messages.size(), texts.join(QLatin1Char(',')));
    return KNError(Domain, 0, texts.join(QStringLiteral("\r\n")));
}

/// Whether no other protocol version would mend it.
bool isHopeless(const KNError &error)
{
    return error.domain() == KNSSHCommand::ErrorDomain || error.code() == Hopeless;
}

} // namespace

struct MSSQLClient::ConnectOption
{
    int tdsVersion;
    const char *name;
};

const MSSQLClient::ConnectOption MSSQLClient::connectOptions[4] = {
    {DBVERSION_74, "TDS74"},
    {DBVERSION_73, "TDS73"},
    {DBVERSION_72, "TDS72"},
    {DBVERSION_71, "TDS71"},
};

bool MSSQLClient::connect(KNError *error)
{
    const auto remembered = m_databaseConnectionDetails->tdsVersion();
    const auto rememberedNTLMv2 = m_databaseConnectionDetails->useNTLMv2();
    if (remembered && rememberedNTLMv2) {
        int row = 0;
        while (row < 3 && connectOptions[row].tdsVersion != *remembered)
            ++row;
        return tryConnect(row, *rememberedNTLMv2, error);
    }
    error->clear();
    if (probe(false, error))
        return true;
    if (isHopeless(*error) ||
        error->localizedDescription().contains(QLatin1String("Server is unavailable or does not exist")))
        return false;
    if (!m_databaseConnectionDetails->username().contains(QLatin1Char('\\')))
        return false;
    return probe(true, error);
}

bool MSSQLClient::probe(bool useNTLMv2, KNError *error)
{
    for (int row = 0; row < 4; ++row) {
        KNError failure;
        if (tryConnect(row, useNTLMv2, &failure)) {
            error->clear();
            return true;
        }
        if (!error->isSet())
            *error = failure;
        const bool isFirstAttempt = row == 0 && !useNTLMv2;
        if (isFirstAttempt &&
            failure.localizedDescription().contains(QLatin1String("Server is unavailable or does not exist")))
            return false;
        if (isHopeless(failure))
            return false;
    }
    return false;
}

bool MSSQLClient::tryConnect(int connectOption, bool useNTLMv2, KNError *error)
{
    const ConnectOption &option = connectOptions[connectOption];
    if (!connect(error, useNTLMv2, option.tdsVersion)) {
        KNLogHelper::sharedInstance()->logMessage("MSSQL failed to connect (%@, NTLMv2 = %@). Error: %@.",
                                                  option.name, yesOrNo(useNTLMv2),
                                                  error->localizedDescription());
        return false;
    }
    // The newest version is remembered whichever one succeeded: an older one is probed for again.
    m_databaseConnectionDetails->setTdsVersion(connectOptions[0].tdsVersion);
    m_databaseConnectionDetails->setUseNTLMv2(useNTLMv2);
    return true;
}

bool MSSQLClient::connect(KNError *error, bool useNTLMv2, int tdsVersion)
{
    MSSQLDatabaseConnectionDetails *details = m_databaseConnectionDetails.get();
    KNAssert(details,
             KNFormat("Database connection details cannot be nil. %p.", static_cast<const void *>(this)),
             SourcePath);
    KNAssert(!details->username().isNull(), "Database connection username cannot be nil.",
             "Implementations/MSSQLClient");
    const auto tunnel = m_tunnel; // the next attempt goes the same way
    disconnect();
    KNLogHelper *log = KNLogHelper::sharedInstance();
    log->registerSecret(details->password());
    log->logMessage("Going to dbopen with NTLMv2: %@. TDS: %ld.", yesOrNo(useNTLMv2), tdsVersion);

    MSSQLMessageList::sharedInstance().clearMessage();
    auto encryption = details->encryption(error);
    if (!encryption)
        return false;
    const auto server = details->sshTunnelModel().isUsed() ? resolveTunnel(&*encryption, error)
                                                           : resolveServer(*encryption, error);
    if (!server)
        return false;
    std::optional<MSSQLLoginFile> file(std::in_place, *server, *encryption);
    if (file->path().isEmpty()) {
        *error = KNError(
            Domain, 0,
            QStringLiteral("A private file for the login could not be written to the folder for temporary "
                           "files (TMPDIR, or /tmp). Check that it exists, has room and may be written to."));
        return false;
    }

    dbsetversion(DBVERSION_UNKNOWN);
    const Login login(dblogin());
    MSSQLMessageList::sharedInstance().clearMessage();
    DBSETLCHARSET(login.get(), "UTF-8");
    DBSETLPWD(login.get(), details->password().toUtf8().constData());
    DBSETLUSER(login.get(), details->username().toUtf8().constData());
    dbsetlbool(login.get(), 1, DBSETBCP);
    DBSETLAPP(login.get(), "Vantor for MSSQL (https://vantor.example)");
    dbsetlversion(login.get(), static_cast<BYTE>(tdsVersion));
    dbsetlbool(login.get(), useNTLMv2, DBSETNTLMV2);
    dbsetlbool(login.get(), details->isReadOnlyIntended(), DBSETREADONLY);
    if (!details->database().isEmpty())
        DBSETLDBNAME(login.get(), details->database().toUtf8().constData());

    bool isOpen = openHandle(login.get(), *file);
    if (const QString completed = azureUserName(details->username(), details->host());
        !isOpen && !completed.isNull()) {
        log->logMessage("Failed to login into Azure. Attempting to add suffix to username.");
        MSSQLMessageList::sharedInstance().clearMessage();
        details->setUsername(completed);
        DBSETLUSER(login.get(), completed.toUtf8().constData());
        isOpen = openHandle(login.get(), *file);
    }
    file.reset();
    if (!isOpen) {
        *error = loginError(*server, *encryption);
        return false;
    }
    return configureSession(*encryption, error);
}

/// The login failure from what the server and db-lib said, or, where neither knows why, from a look at how
/// the server encrypts.
KNError MSSQLClient::loginError(const MSSQLServerAddress &server, const MSSQLEncryption &encryption) const
{
    constexpr int LongestCheck = 5; // seconds
    if (m_tunnel && m_tunnel->couldNotReachHost())
        return KNError(Domain, Hopeless,
                       KNFormat("The SSH server %@ could not reach %@. Its name and port must be as that "
                                "server sees them.",
                                m_databaseConnectionDetails->sshTunnelModel().host,
                                m_databaseConnectionDetails->host()));
    const QList<DatabaseMessage> messages = MSSQLMessageList::sharedInstance().messages();
    KNError error = loginErrorFromMessages(messages);
    const bool isExplained =
        std::any_of(messages.begin(), messages.end(),
                    [](const DatabaseMessage &m) { return m.type == DatabaseMessage::ServerMessage; }) ||
        error.localizedDescription().contains(QLatin1String("Server is unavailable or does not exist"));
    const bool isByDefault =
        encryption.mode == MSSQLEncryption::Mode::Request && !encryption.verifiesCertificate;
    if (isExplained || isByDefault)
        return error;
    const auto timeout =
        std::chrono::seconds(std::min(m_databaseConnectionDetails->loginTimeout(), LongestCheck));
    const QString problem = MSSQLEncryptionProblem(server.host, server.port, encryption, timeout);
    return problem.isNull() ? error : KNError(Domain, Hopeless, problem);
}

bool MSSQLClient::openHandle(LOGINREC *login, const MSSQLLoginFile &file)
{
    const KNSemaphoreLocker connecting(connectSemaphore());
    shieldFromEnvironment();
    dbsetifile(file.path().data());
    // The time-out is db-lib's for the whole process; logins are serialised here, so each runs under its own.
    dbsetlogintime(m_databaseConnectionDetails->loginTimeout());
    DBPROCESS *handle = tdsdbopen(login, file.entry().constData(), 1);
    if (handle) {
        dbsetuserdata(handle, reinterpret_cast<BYTE *>(&m_cancellation));
        dbsetinterrupt(handle, check_interrupt, handle_interrupt);
    }
    const KNSemaphoreLocker locker(m_dbProcSemaphore);
    m_dbProc = handle;
    return handle != nullptr;
}

bool MSSQLClient::configureSession(const MSSQLEncryption &encryption, KNError *error)
{
    const QString sql =
        QStringLiteral("SET TEXTSIZE 2147483647\r\n"
                       "SET ANSI_NULLS, QUOTED_IDENTIFIER, CONCAT_NULL_YIELDS_NULL, ANSI_WARNINGS, "
                       "ANSI_PADDING, ANSI_NULL_DFLT_ON ON");
    const MachTimer timer;
    KNError failure;
    const quint64 before = bytesWritten();
    m_cancellation.setDeadline(MSSQLCancellation::Clock::now() +
                               std::chrono::seconds(m_databaseConnectionDetails->loginTimeout()));
    executeNonQuery(sql, &failure);
    m_cancellation.clearDeadline();
    if (failure) {
        *error = failure;
        return false;
    }
    if (encryption.mode == MSSQLEncryption::Mode::Require && bytesWritten() - before <= sizeInClear(sql)) {
        disconnect();
        *error = KNError(
            Domain, Hopeless,
            QStringLiteral(
                "The server encrypts the login alone, and this connection requires that everything is "
                "encrypted. Someone between you and the server may be changing what they say. Nothing "
                "of yours was sent in clear; the connection was closed."));
        return false;
    }
    KNLogHelper::sharedInstance()->logMessage("MSSQLClient::connect configure took %0.2f.", timer.seconds());
    return runInitialStatements(error);
}

/// The user's own, batch by batch. The session is of no use without them.
bool MSSQLClient::runInitialStatements(KNError *error)
{
    const QString sql = m_databaseConnectionDetails->initialStatements();
    if (sql.trimmed().isEmpty())
        return true;
    const auto splitter = m_databaseConnectionDetails->createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    KNResultSetHolder holder;
    KNError failure;
    m_cancellation.setDeadline(MSSQLCancellation::Clock::now() +
                               std::chrono::seconds(m_databaseConnectionDetails->loginTimeout()));
    executeQueryDetails(splitter->doSplitQuery(sql), holder, {}, &failure);
    m_cancellation.clearDeadline();
    if (!failure)
        return true;
    disconnect();
    *error =
        KNError(Domain, Hopeless,
                KNFormat("The connection's initial statements failed. %@", failure.localizedDescription()));
    return false;
}

quint64 MSSQLClient::bytesWritten() const
{
    const KNSemaphoreLocker locker(m_dbProcSemaphore);
    return m_dbProc ? MSSQLBytesWritten(DBIOWDESC(m_dbProc)) : 0;
}

/// How many bytes a short batch has on the wire when nothing protects it. db-lib does not say whether it
/// encrypts, and goes on in clear where a server's unprotected answer says so, whatever was required of it.
quint64 MSSQLClient::sizeInClear(const QString &sql) const
{
    constexpr quint64 PacketHeader = 8;
    constexpr quint64 TransactionHeaders = 22; // MS-TDS 2.2.5.3, from 7.2 on
    const KNSemaphoreLocker locker(m_dbProcSemaphore);
    const bool hasHeaders = m_dbProc && dbtds(m_dbProc) >= DBTDS_7_2;
    return PacketHeader + (hasHeaders ? TransactionHeaders : 0) + 2 * static_cast<quint64>(sql.size());
}
