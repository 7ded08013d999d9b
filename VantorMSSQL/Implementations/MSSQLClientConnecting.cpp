#include "Foundation/KNAssert.h"
#include "Foundation/KNHostCache.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/MachTimer.h"
#include "Implementations/MSSQLBytesWritten.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLClientCallbacks.h"
#include "Implementations/MSSQLEncryptionCheck.h"
#include "Implementations/MSSQLInstancePort.h"
#include "Implementations/MSSQLLoginFile.h"
#include "Implementations/MSSQLMessageList.h"

#include <QHostAddress>
#include <QRegularExpression>
#include <QUrl>

#include <sybdb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

const QString LoginErrorDomain = QStringLiteral("com.quorvex.mssql.databaseConnection");
constexpr int EncryptionFailed = 1; ///< the code of a login error that no other protocol version would mend
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

/// Where the name ends: the earliest separator, or the end. An IPv6 address in brackets is a name.
qsizetype endOfServerName(const QString &text)
{
    static const QRegularExpression separators(QStringLiteral("[,:\\\\]"));
    const qsizetype bracket = text.startsWith(QLatin1Char('[')) ? text.indexOf(QLatin1Char(']')) : -1;
    const qsizetype end = text.indexOf(separators, bracket + 1);
    return end < 0 ? text.size() : end;
}

/// server\instance:port as server:port\instance
QString withPortBeforeInstance(const QString &text)
{
    const qsizetype backslash = text.indexOf(QLatin1Char('\\'));
    const qsizetype colon = text.lastIndexOf(QLatin1Char(':'));
    if (backslash < 0 || colon < backslash)
        return text;
    return text.left(backslash) + text.mid(colon) + text.mid(backslash, colon - backslash);
}

/// The name of the server without brackets, instance and port, as a look-up in DNS and a certificate take it;
/// empty when it is none.
QString hostNameOf(const QString &host)
{
    static const QRegularExpression name(QStringLiteral("\\A[A-Za-z0-9._:%-]{1,230}\\z"));
    const bool isAddress = !QHostAddress(host).isNull();
    QString text = isAddress ? host : host.left(endOfServerName(host));
    text.remove(QLatin1Char('[')).remove(QLatin1Char(']'));
    if (std::any_of(text.begin(), text.end(), [](QChar c) { return c.unicode() >= 0x80; }))
        text = QString::fromLatin1(QUrl::toAce(text));
    return name.match(text).hasMatch() ? text : QString();
}

/// The port in address:port and address:port\instance, the default one when there is none; 0 for what is no
/// port.
quint16 portIn(const QString &server)
{
    constexpr quint16 DefaultPort = 1433;
    const qsizetype end = endOfServerName(server);
    if (end == server.size())
        return DefaultPort;
    return server.mid(end + 1).section(QLatin1Char('\\'), 0, 0).toUShort();
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
    return KNError(LoginErrorDomain, 0, texts.join(QStringLiteral("\r\n")));
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
    if (error->code() == EncryptionFailed ||
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
        if (failure.code() == EncryptionFailed)
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
    disconnect();
    KNLogHelper *log = KNLogHelper::sharedInstance();
    log->registerSecret(details->password());
    log->logMessage("Going to dbopen with NTLMv2: %@. TDS: %ld.", yesOrNo(useNTLMv2), tdsVersion);

    MSSQLMessageList::sharedInstance().clearMessage();
    const auto encryption = details->encryption(error);
    if (!encryption)
        return false;
    const auto server = resolveServer(*encryption, error);
    if (!server)
        return false;
    std::optional<MSSQLLoginFile> file(std::in_place, *server, *encryption);
    if (file->path().isEmpty()) {
        *error = KNError(
            LoginErrorDomain, 0,
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

/// Where to connect to. The address is looked up here, before all other logins wait, except where the
/// certificate must be for the name: db-lib compares it with what it connects to, and looks the name up
/// itself.
std::optional<MSSQLServerAddress> MSSQLClient::resolveServer(const MSSQLEncryption &encryption,
                                                             KNError *error) const
{
    const QString host = m_databaseConnectionDetails->host();
    QString server = serverTextForHost(host);
    if (!resolveInstance(&server, error))
        return std::nullopt;
    const MSSQLServerAddress address = {hostNameOf(encryption.checksHostName ? host : server),
                                        portIn(server)};
    if (!address.host.isEmpty() && address.port != 0)
        return address;
    *error = KNError(LoginErrorDomain, 0,
                     KNFormat("\"%@\" is not the name of a server. Give server, server,port or "
                              "server\\instance.",
                              host));
    return std::nullopt;
}

/// The login failure from what the server and db-lib said, or, where neither knows why, from a look at how
/// the server encrypts.
KNError MSSQLClient::loginError(const MSSQLServerAddress &server, const MSSQLEncryption &encryption) const
{
    constexpr int LongestCheck = 5; // seconds
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
    return problem.isNull() ? error : KNError(LoginErrorDomain, EncryptionFailed, problem);
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

/// db-lib would look an instance's port up itself, but waits very long for a silent Browser while all other
/// logins wait for it.
bool MSSQLClient::resolveInstance(QString *server, KNError *error) const
{
    const qsizetype backslash = server->indexOf(QLatin1Char('\\'));
    if (backslash < 0 || endOfServerName(*server) < backslash)
        return true;
    const QString address = server->left(backslash);
    const QString instance = server->mid(backslash + 1);
    const auto timeout = std::chrono::seconds(std::min(m_databaseConnectionDetails->loginTimeout(), 3));
    QString plainAddress = address;
    plainAddress.remove(QLatin1Char('[')).remove(QLatin1Char(']'));
    const quint16 port = dbportforinstance(plainAddress, instance, timeout);
    if (port == 0) {
        *error = KNError(
            LoginErrorDomain, 0,
            KNFormat("The SQL Server Browser at %@ did not name a port for the instance \"%@\". Check the "
                     "instance name, or give the port: server,port.",
                     plainAddress, instance));
        return false;
    }
    *server = KNFormat("%@:%d", address, port);
    return true;
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
            LoginErrorDomain, EncryptionFailed,
            QStringLiteral(
                "The server encrypts the login alone, and this connection requires that everything is "
                "encrypted. Someone between you and the server may be changing what they say. Nothing "
                "of yours was sent in clear; the connection was closed."));
        return false;
    }
    KNLogHelper::sharedInstance()->logMessage("MSSQLClient::connect configure took %0.2f.", timer.seconds());
    return true;
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

QString MSSQLClient::serverTextForHost(const QString &host)
{
    if (const QHostAddress literal(host); literal.protocol() == QAbstractSocket::IPv6Protocol)
        return KNFormat("[%@]", host);
    QString text = host;
    text.replace(QLatin1Char(','), QLatin1Char(':'));
    text = withPortBeforeInstance(text);
    const qsizetype end = endOfServerName(text);
    QString name = text.left(end);
    if (name.startsWith(QLatin1Char('[')) && name.endsWith(QLatin1Char(']')))
        name = name.mid(1, name.size() - 2);
    QString address = KNHostCache::sharedInstance()->cachedIPAddressForHost(name);
    if (address.contains(QLatin1Char(':')))
        address = QLatin1Char('[') + address + QLatin1Char(']');
    return address + text.mid(end);
}

QString MSSQLClient::azureUserName(const QString &username, const QString &host)
{
    QString name = host.left(endOfServerName(host)).toLower();
    const bool isAzure = name.endsWith(QLatin1String(".database.windows.net")) ||
                         name.endsWith(QLatin1String(".database.secure.windows.net"));
    if (!isAzure || username.contains(QLatin1Char('@')))
        return QString();
    const QString firstLabel = host.left(host.indexOf(QLatin1Char('.')));
    return KNFormat("%@@%@", username, firstLabel);
}
