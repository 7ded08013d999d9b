#include "Foundation/KNFormat.h"
#include "Foundation/KNHostCache.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLEncryptionCheck.h"
#include "Implementations/MSSQLInstancePort.h"
#include "Implementations/MSSQLLoginError.h"
#include "Implementations/MSSQLLoginFile.h"
#include "SSH/KNSSHTunnel.h"

#include <QHostAddress>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

namespace {

/// The position at which the name ends: the first separator, or the end. An IPv6 address in brackets is a
/// name.
qsizetype endOfServerName(const QString &text)
{
    static const QRegularExpression separators(QStringLiteral("[,:\\\\]"));
    const qsizetype bracket = text.startsWith(QLatin1Char('[')) ? text.indexOf(QLatin1Char(']')) : -1;
    const qsizetype end = text.indexOf(separators, bracket + 1);
    return end < 0 ? text.size() : end;
}

QString inBracketsIfIPv6(const QString &address)
{
    return address.contains(QLatin1Char(':')) ? KNFormat("[%@]", address) : address;
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

/// The name or address as typed, without brackets, instance and port.
QString nameIn(const QString &host)
{
    if (!QHostAddress(host).isNull())
        return host;
    const QString name = host.left(endOfServerName(host));
    const bool isInBrackets = name.startsWith(QLatin1Char('[')) && name.endsWith(QLatin1Char(']'));
    return isInBrackets ? name.mid(1, name.size() - 2) : name;
}

/// The name of the server without brackets, instance and port, for DNS and for the certificate; empty if
/// there is none.
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

/// The port in address:port and address:port\instance, or the default port; 0 for an invalid port.
quint16 portIn(const QString &server)
{
    constexpr quint16 DefaultPort = 1433;
    const qsizetype end = endOfServerName(server);
    if (end == server.size())
        return DefaultPort;
    return server.mid(end + 1).section(QLatin1Char('\\'), 0, 0).toUShort();
}

KNError noServerError(const QString &host)
{
    return MSSQLLoginError::hopeless(
        host.isEmpty()
            ? QStringLiteral(
                  "The name of the server is missing. Enter server, server,port or server\\instance.")
            : KNFormat("\"%@\" is not a valid server name. Enter server, server,port or server\\instance.",
                       host));
}

} // namespace

/// The server's name as the user typed it, without instance and port.
QString MSSQLClient::serverNameForUsers() const
{
    const QString host = m_databaseConnectionDetails->host();
    const QString name = hostNameOf(host);
    return name.isEmpty() ? host : name;
}

/// The server's own port, even if a tunnel is used.
quint16 MSSQLClient::portForUsers(const MSSQLServerAddress &server) const
{
    if (!m_databaseConnectionDetails->sshTunnelModel().isUsed())
        return server.port;
    QString host = m_databaseConnectionDetails->host();
    return portIn(withPortBeforeInstance(host.replace(QLatin1Char(','), QLatin1Char(':'))));
}

/// Determines the address to connect to. The name is resolved here, before the lock that serialises all
/// logins is taken, except if the certificate must match the name: db-lib compares it with the host that it
/// connects to, and resolves the name itself.
std::optional<MSSQLServerAddress> MSSQLClient::resolveServer(const MSSQLEncryption &encryption,
                                                             KNError *error) const
{
    const QString host = m_databaseConnectionDetails->host();
    QString server = serverTextForHost(host);
    if (!resolveInstance(&server, error))
        return std::nullopt;
    MSSQLServerAddress address = {hostNameOf(encryption.checksHostName ? host : server), portIn(server)};
    if (const QString name = nameIn(host); !encryption.checksHostName && QHostAddress(name).isNull())
        address.name = name;
    if (!address.host.isEmpty() && address.port != 0)
        return address;
    *error = noServerError(host);
    return std::nullopt;
}

/// Returns the local end of the tunnel. Names are resolved at its remote end. If the certificate must match
/// the server's name, which db-lib would compare with the local end's, it is verified here first, and db-lib
/// then accepts only that certificate.
std::optional<MSSQLServerAddress> MSSQLClient::resolveTunnel(MSSQLEncryption *encryption, KNError *error)
{
    const MSSQLDatabaseConnectionDetails &details = *m_databaseConnectionDetails;
    QString server = details.host();
    server = withPortBeforeInstance(server.replace(QLatin1Char(','), QLatin1Char(':')));
    const QString name = hostNameOf(details.host());
    const qsizetype end = endOfServerName(server);
    if (end < server.size() && server.at(end) == QLatin1Char('\\')) {
        *error = MSSQLLoginError::hopeless(QStringLiteral(
            "The port of an instance cannot be asked for through an SSH tunnel. Give it: server,port."));
        return std::nullopt;
    }
    const quint16 port = portIn(server);
    if (name.isEmpty() || port == 0) {
        *error = noServerError(details.host());
        return std::nullopt;
    }
    const auto tunnelTimeout =
        std::max(std::chrono::seconds(1), std::chrono::ceil<std::chrono::seconds>(loginTimeLeft()));
    m_tunnel = KNSSHTunnel::open(details.sshTunnelModel(), name, port, tunnelTimeout, error);
    if (!m_tunnel)
        return std::nullopt;
    const MSSQLServerAddress nearEnd = {QStringLiteral("127.0.0.1"), m_tunnel->localPort()};
    if (!encryption->checksHostName)
        return nearEnd;
    const MSSQLEncryptionFinding finding = MSSQLCheckEncryption(
        nearEnd.host, nearEnd.port, *encryption, loginTimeLeft(), name, m_cancellation.requestDescriptor());
    if (m_cancellation.isRequested()) {
        *error = MSSQLLoginError::cancelled();
        return std::nullopt;
    }
    if (!finding.problem.isNull()) {
        *error = KNError(MSSQLLoginError::Domain, MSSQLLoginError::Hopeless, finding.problem,
                         finding.untrusted ? finding.untrusted->errorInfo() : QVariantMap());
        return std::nullopt;
    }
    if (!finding.certificate.isEmpty()) {
        encryption->pinnedCertificate = finding.certificate;
        encryption->checksHostName = false;
    }
    return nearEnd;
}

/// Resolves an instance's port here because db-lib waits very long for a silent Browser, and all other logins
/// wait meanwhile.
bool MSSQLClient::resolveInstance(QString *server, KNError *error) const
{
    const qsizetype backslash = server->indexOf(QLatin1Char('\\'));
    if (backslash < 0 || endOfServerName(*server) < backslash)
        return true;
    const QString instance = server->mid(backslash + 1);
    constexpr std::chrono::milliseconds LongestWait(3000);
    const QString name = nameIn(m_databaseConnectionDetails->host());
    const QStringList addresses = KNHostCache::sharedInstance()->cachedIPAddressesForHost(name);
    const auto timeout = std::min(loginTimeLeft(), LongestWait) / addresses.size();
    for (const QString &candidate : addresses) {
        if (const quint16 port = dbportforinstance(candidate, instance, timeout)) {
            KNHostCache::sharedInstance()->prefer(name, candidate);
            *server = KNFormat("%@:%d", inBracketsIfIPv6(candidate), port);
            return true;
        }
    }
    *error = MSSQLLoginError::hopeless(
        KNFormat("The SQL Server Browser at %@ did not name a port for the instance \"%@\". Check the "
                 "instance name, or give the port: server,port.",
                 addresses.join(QLatin1String(", ")), instance));
    return false;
}

QString MSSQLClient::serverTextForHost(const QString &host)
{
    if (const QHostAddress literal(host); literal.protocol() == QAbstractSocket::IPv6Protocol)
        return KNFormat("[%@]", host);
    QString text = host;
    text.replace(QLatin1Char(','), QLatin1Char(':'));
    text = withPortBeforeInstance(text);
    const qsizetype end = endOfServerName(text);
    const QString name = nameIn(text);
    return inBracketsIfIPv6(KNHostCache::sharedInstance()->cachedIPAddressForHost(name)) + text.mid(end);
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
