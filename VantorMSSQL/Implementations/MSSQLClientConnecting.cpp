#include "Foundation/KNAssert.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/MachTimer.h"
#include "Implementations/MSSQLBytesWritten.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLEncryptionCheck.h"
#include "Implementations/MSSQLLoginError.h"
#include "Implementations/MSSQLLoginFile.h"
#include "Implementations/MSSQLMessageList.h"
#include "Implementations/MSSQLServerCheck.h"
#include "Implementations/MSSQLVerifiedCertificates.h"
#include "SQL/KNQuerySplitter.h"
#include "SSH/KNSSHCommand.h"
#include "SSH/KNSSHTunnel.h"

#include <sybdb.h>

#include <QSysInfo>

#include <algorithm>
#include <limits>

namespace {

using namespace MSSQLLoginError;
const QString SourcePath = QStringLiteral("Implementations/MSSQLClient");

const char *yesOrNo(bool flag)
{
    return flag ? "YES" : "NO";
}

KNError encryptionProblem(const MSSQLEncryptionFinding &finding)
{
    return KNError(Domain, Hopeless, finding.problem,
                   finding.untrusted ? finding.untrusted->errorInfo() : QVariantMap());
}

/// Whether neither another protocol version nor the other kind of NTLM can succeed. A refused Windows login
/// may be accepted with NTLMv2.
bool isHopeless(const KNError &error, const QString &username)
{
    if (error.domain() == KNSSHCommand::ErrorDomain || error.code() == Hopeless)
        return true;
    switch (VantorLoginProblemOf(error)) {
    case VantorLoginProblem::DatabaseRefused:
        return true;
    case VantorLoginProblem::LoginRefused:
        return !username.contains(QLatin1Char('\\'));
    default:
        return false;
    }
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
    const MSSQLRunScope run(m_cancellation);
    const MSSQLDeadlineScope time(m_cancellation,
                                  std::chrono::seconds(m_databaseConnectionDetails->loginTimeout()));
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
    const QString username = m_databaseConnectionDetails->username();
    if (isHopeless(*error, username) ||
        error->localizedDescription().contains(QLatin1String("Server is unavailable or does not exist")))
        return false;
    return username.contains(QLatin1Char('\\')) && probe(true, error);
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
        if (isHopeless(failure, m_databaseConnectionDetails->username()))
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
    // The newest version is remembered, whichever one succeeded: an older one is probed again.
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
    const MSSQLRunScope run(m_cancellation);
    const MSSQLDeadlineScope time(m_cancellation, std::chrono::seconds(details->loginTimeout()));
    const auto tunnel = m_tunnel; // the next attempt uses it, too
    disconnect();
    KNLogHelper *log = KNLogHelper::sharedInstance();
    log->registerSecret(details->password());
    log->logMessage("Going to dbopen with NTLMv2: %@. TDS: %ld.", yesOrNo(useNTLMv2), tdsVersion);

    MSSQLMessageList::sharedInstance().clearMessage();
    if (!checkLoginTexts(error))
        return false;
    auto encryption = details->encryption(error);
    if (!encryption)
        return false;
    auto server = details->sshTunnelModel().isUsed() ? resolveTunnel(&*encryption, error)
                                                     : resolveServer(*encryption, error);
    if (!server || !isServerThere(*server, error) || !checkCertificate(*server, &*encryption, error))
        return false;
    const MSSQLLoginFile file(*server, *encryption);
    if (file.path().isEmpty()) {
        *error = hopeless(
            QStringLiteral("A private file for the login could not be written to the folder for temporary "
                           "files (TMPDIR, or /tmp). Check that it exists, has room and may be written to."));
        return false;
    }
    if (!logIn(useNTLMv2, tdsVersion, file, *server, error)) {
        if (!error->isSet())
            *error = loginError(*server, *encryption);
        return false;
    }
    MSSQLServerCheck::noteAnswer(*server);
    return configureSession(*encryption, *server, error);
}

/// False, with an error, if the server does not answer; db-lib must not try to log in then. Otherwise
/// `server` is the address that answers.
bool MSSQLClient::isServerThere(MSSQLServerAddress &server, KNError *error)
{
    using MSSQLServerCheck::Answer;
    QString reason;
    const Answer answer =
        MSSQLServerCheck::ask(server, m_cancellation.deadline(), m_cancellation.requestDescriptor(), &reason);
    switch (answer) {
    case Answer::Given:
    case Answer::Uncertain:
        return true;
    case Answer::Silent:
        MSSQLServerCheck::forget(server);
        *error = timeoutError(server, "took the connection and then said nothing");
        return false;
    case Answer::Unreachable:
        MSSQLServerCheck::forget(server);
        *error = unreachable(serverNameForUsers(), portForUsers(server), reason);
        return false;
    case Answer::Cancelled:
        break;
    }
    *error = cancelled();
    return false;
}

/// Verifies the server's certificate before a password is sent, if the settings require it: db-lib does not
/// check the extended key usage. db-lib then accepts only this certificate, except where a gateway may route
/// the session to another server with its own certificate (MS-TDS 2.2.7.9, ENVCHANGE type 20): in the cloud,
/// whose certificates the system's authorities sign, and with read-only intent.
bool MSSQLClient::checkCertificate(const MSSQLServerAddress &server, MSSQLEncryption *encryption,
                                   KNError *error)
{
    if (!encryption->verifiesCertificate || !encryption->pinnedCertificate.isEmpty())
        return true;
    QByteArray certificate = MSSQLVerifiedCertificates::find(server, *encryption);
    if (certificate.isEmpty()) {
        const MSSQLEncryptionFinding finding = MSSQLCheckEncryption(
            server.host, server.port, *encryption, loginTimeLeft(), {}, m_cancellation.requestDescriptor());
        certificate = finding.certificate;
        KNError failure;
        if (m_cancellation.isRequested())
            failure = cancelled();
        else if (m_cancellation.isDeadlineOver())
            failure = timeoutError(server, "did not finish the TLS handshake and the login");
        else if (!finding.problem.isNull())
            failure = encryptionProblem(finding);
        else if (certificate.isEmpty())
            failure =
                unreachable(serverNameForUsers(), portForUsers(server),
                            QStringLiteral("The connection ended before the server showed its certificate."));
        if (failure) {
            MSSQLServerCheck::forget(server);
            *error = failure;
            return false;
        }
        MSSQLVerifiedCertificates::remember(server, *encryption, certificate);
    }
    const bool mayBeRouted =
        encryption->trustedCertificateFile.isNull() || m_databaseConnectionDetails->isReadOnlyIntended();
    if (!mayBeRouted)
        encryption->pinnedCertificate = certificate;
    return true;
}

/// The remaining time for connecting; not below 0.
std::chrono::milliseconds MSSQLClient::loginTimeLeft() const
{
    using std::chrono::milliseconds;
    const auto left = m_cancellation.deadline() - MSSQLCancellation::Clock::now();
    return std::max(milliseconds(0), std::chrono::ceil<milliseconds>(left));
}

KNError MSSQLClient::timeoutError(const MSSQLServerAddress &server, const char *what) const
{
    return timedOut(serverNameForUsers(), portForUsers(server),
                    std::chrono::seconds(m_databaseConnectionDetails->loginTimeout()), what);
}

/// The login error from the messages of the server and db-lib or, if they do not name the reason, from a
/// check of the server's encryption.
KNError MSSQLClient::loginError(const MSSQLServerAddress &server, const MSSQLEncryption &encryption)
{
    constexpr std::chrono::milliseconds LongestCheck(5000);
    constexpr std::chrono::milliseconds LongestComplaint(
        2000); // for ssh's error output, which may follow the end of its socket
    if (m_cancellation.isRequested())
        return cancelled();
    const QList<DatabaseMessage> messages = MSSQLMessageList::sharedInstance().messages();
    KNError error = fromMessages(messages, serverNameForUsers(), portForUsers(server));
    const bool hasServerSpoken = std::any_of(messages.begin(), messages.end(), [](const DatabaseMessage &m) {
        return m.type == DatabaseMessage::ServerMessage;
    });
    if (hasServerSpoken)
        return error;
    MSSQLVerifiedCertificates::forget(server, encryption);
    const bool isByDefault =
        encryption.mode == MSSQLEncryption::Mode::Request && !encryption.verifiesCertificate;
    if (m_cancellation.isDeadlineOver()) {
        MSSQLServerCheck::forget(server);
        return timeoutError(server, isByDefault ? "did not finish the login"
                                                : "did not finish the TLS handshake and the login");
    }
    const std::chrono::milliseconds left = loginTimeLeft();
    const bool hasAnswered = MSSQLServerCheck::hasAnswered(server);
    if (m_tunnel && !hasAnswered && m_tunnel->couldNotReachHost(std::min(left, LongestComplaint)))
        return hopeless(KNFormat("The SSH server %@ could not reach %@. Its name and port must be as that "
                                 "server sees them.",
                                 m_databaseConnectionDetails->sshTunnelModel().host,
                                 m_databaseConnectionDetails->host()));
    if (!server.name.isNull())
        MSSQLServerCheck::forget(server); // the server may have moved to another of the name's addresses
    if (isByDefault ||
        error.localizedDescription().contains(QLatin1String("Server is unavailable or does not exist")))
        return error;
    const MSSQLEncryptionFinding finding =
        MSSQLCheckEncryption(server.host, server.port, encryption, std::min(left, LongestCheck), {},
                             m_cancellation.requestDescriptor());
    return finding.problem.isNull() ? error : encryptionProblem(finding);
}

bool MSSQLClient::configureSession(const MSSQLEncryption &encryption, const MSSQLServerAddress &server,
                                   KNError *error)
{
    const QString sql =
        QStringLiteral("SET TEXTSIZE 2147483647\r\n"
                       "SET ANSI_NULLS, QUOTED_IDENTIFIER, CONCAT_NULL_YIELDS_NULL, ANSI_WARNINGS, "
                       "ANSI_PADDING, ANSI_NULL_DFLT_ON ON");
    const MachTimer timer;
    KNError failure;
    const quint64 before = bytesWritten();
    const MSSQLFloodGuard guard(socket(), loginTimeLeft());
    executeNonQuery(sql, &failure);
    if (failure) {
        *error = m_cancellation.isRequested()      ? cancelled()
                 : m_cancellation.isDeadlineOver() ? timeoutError(server, "did not finish the login")
                                                   : failure;
        return false;
    }
    if (encryption.mode == MSSQLEncryption::Mode::Require && bytesWritten() - before <= sizeInClear(sql)) {
        disconnect();
        *error = hopeless(QStringLiteral(
            "The server encrypts the login alone, and this connection requires that everything is "
            "encrypted. Someone between you and the server may be changing what they say. Nothing "
            "of yours was sent in clear; the connection was closed."));
        return false;
    }
    m_encryption = encryptionMeasured(encryption, server, before, bytesWritten() - before > sizeInClear(sql));
    KNLogHelper::sharedInstance()->logMessage("MSSQLClient::connect configure took %0.2f.", timer.seconds());
    return reachDatabase(error) && runInitialStatements(error);
}

/// Changes to the database of the settings if its name was too long for the login.
bool MSSQLClient::reachDatabase(KNError *error)
{
    const QString database = m_databaseConnectionDetails->database();
    if (fitsLogin(database))
        return true;
    KNError failure;
    executeNonQuery(QStringLiteral("USE ") + quotedName(database), &failure);
    if (!failure)
        return true;
    disconnect();
    *error = KNError(
        Domain, Hopeless,
        KNFormat("The database \"%@\" could not be opened. %@", database, failure.localizedDescription()),
        VantorLoginProblemInfo(VantorLoginProblem::DatabaseRefused));
    return false;
}

/// Runs the user's initial statements, batch by batch. If one fails, the session cannot be used.
bool MSSQLClient::runInitialStatements(KNError *error)
{
    const QString sql = m_databaseConnectionDetails->initialStatements();
    if (sql.trimmed().isEmpty())
        return true;
    const auto splitter = m_databaseConnectionDetails->createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    KNResultSetHolder holder;
    KNError failure;
    executeQueryDetails(splitter->doSplitQuery(sql), holder, {}, &failure);
    if (!failure)
        failure = holder.failure();
    const bool wasStopped = m_cancellation.isRequested();
    if (!failure && !wasStopped)
        return true;
    disconnect();
    *error = wasStopped ? cancelled()
                        : hopeless(KNFormat("The connection's initial statements failed. %@",
                                            failure.localizedDescription()));
    return false;
}

quint64 MSSQLClient::bytesWritten() const
{
    const KNSemaphoreLocker locker(m_dbProcSemaphore);
    return m_dbProc ? MSSQLBytesWritten(DBIOWDESC(m_dbProc)) : 0;
}

/// The size of a short unencrypted batch on the wire, in bytes. db-lib does not report whether it encrypts,
/// and continues in clear text if a server's unprotected answer says so, whatever was required.
quint64 MSSQLClient::sizeInClear(const QString &sql) const
{
    constexpr quint64 PacketHeader = 8;
    constexpr quint64 TransactionHeaders = 22; // MS-TDS 2.2.5.3, from 7.2 on
    const KNSemaphoreLocker locker(m_dbProcSemaphore);
    const bool hasHeaders = m_dbProc && dbtds(m_dbProc) >= DBTDS_7_2;
    return PacketHeader + (hasHeaders ? TransactionHeaders : 0) + 2 * static_cast<quint64>(sql.size());
}

/// The protection of this session. The certificate counts only if it was verified for this login.
VantorEncryption MSSQLClient::encryptionMeasured(const MSSQLEncryption &encryption,
                                                 const MSSQLServerAddress &server, quint64 loginSize,
                                                 bool isAllEncrypted) const
{
    if (isAllEncrypted)
        return encryption.verifiesCertificate ? VantorEncryption::Verified : VantorEncryption::Unverified;
    return loginSize > largestLoginInClear(server) ? VantorEncryption::LoginOnly : VantorEncryption::None;
}

/// The most that PRELOGIN and LOGIN7 without encryption can have: a TLS handshake adds more than the slack.
/// The length of a Windows login is not known; it is not called encrypted, and does not send the password.
quint64 MSSQLClient::largestLoginInClear(const MSSQLServerAddress &server) const
{
    constexpr quint64 Headers = 200;
    constexpr qsizetype OwnTexts = 100; // program, library, language, the entry without its host
    const MSSQLDatabaseConnectionDetails &details = *m_databaseConnectionDetails;
    if (details.username().contains(QLatin1Char('\\')))
        return std::numeric_limits<quint64>::max();
    const qsizetype texts = details.username().size() + details.password().size() +
                            details.database().size() + QSysInfo::machineHostName().size() +
                            server.host.size() + OwnTexts;
    return Headers + 2 * static_cast<quint64>(texts);
}
