#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNHostCache.h"
#include "Foundation/KNPropertyList.h"
#include "Implementations/MSSQLInstancePort.h"
#include "Implementations/MSSQLQuoting.h"
#include "Implementations/MSSQLTokenizer.h"
#include "Implementations/MSSQLWordLists.h"

#include <algorithm>

namespace {

constexpr int DefaultLoginTimeout = 15;
const QString ConnectedTds = QStringLiteral("TDS");
const QString ConnectedNTLMv2 = QStringLiteral("NTLMv2");

/// Whether the texts are equal and not null.
bool areEqualTexts(const QString &left, const QString &right)
{
    return !left.isNull() && !right.isNull() && left == right;
}

/// Whether the texts are equal or one of them is unknown.
bool areCompatibleTexts(const QString &left, const QString &right)
{
    return left.isNull() || right.isNull() || left == right;
}

} // namespace

MSSQLDatabaseConnectionDetails::MSSQLDatabaseConnectionDetails() = default;
MSSQLDatabaseConnectionDetails::~MSSQLDatabaseConnectionDetails() = default;

int MSSQLDatabaseConnectionDetails::loginTimeout() const
{
    const int seconds =
        m_sessionParameters.value(QStringLiteral("loginTimeout"), DefaultLoginTimeout).toInt();
    return seconds > 0 ? seconds : DefaultLoginTimeout;
}

int MSSQLDatabaseConnectionDetails::queryTimeout() const
{
    return std::max(0, m_sessionParameters.value(QStringLiteral("queryTimeout")).toInt());
}

bool MSSQLDatabaseConnectionDetails::isReadOnlyIntended() const
{
    return m_sessionParameters.value(QStringLiteral("applicationIntent")).toString() ==
           QLatin1String("readonly");
}

QString MSSQLDatabaseConnectionDetails::initialStatements() const
{
    return m_sessionParameters.value(QStringLiteral("initialStatements")).toString();
}

std::optional<MSSQLEncryption> MSSQLDatabaseConnectionDetails::encryption(KNError *error) const
{
    return MSSQLEncryption::fromSessionParameters(m_sessionParameters, error);
}

VantorDBCPtr MSSQLDatabaseConnectionDetails::copy() const
{
    return VantorDBCPtr(new MSSQLDatabaseConnectionDetails(*this));
}

QString MSSQLDatabaseConnectionDetails::quotedName(const QString &name) const
{
    return MSSQLQuoting::quotedName(name);
}

QString MSSQLDatabaseConnectionDetails::literal(const KNValue &value) const
{
    return MSSQLQuoting::literal(value);
}

QString MSSQLDatabaseConnectionDetails::description() const
{
    QString text =
        database().isEmpty()
            ? KNFormat("%@@@%@:%lu:%@", username(), host(), port(), m_federationStatement)
            : KNFormat("%@@@%@:%lu - %@:%@", username(), host(), port(), database(), m_federationStatement);
    // The same name refers to another server at the end of another tunnel.
    if (const KNSSHTunnelModel &tunnel = sshTunnelModel(); tunnel.isUsed())
        text += KNFormat(" through %@@%@:%d", tunnel.username, tunnel.host, tunnel.port);
    return text;
}

QVariantMap MSSQLDatabaseConnectionDetails::connectedWithDetails() const
{
    return {{ConnectedTds, m_tdsVersion ? QVariant(*m_tdsVersion) : QVariant()},
            {ConnectedNTLMv2, m_useNTLMv2 ? QVariant(*m_useNTLMv2) : QVariant()}};
}

void MSSQLDatabaseConnectionDetails::setConnectedWithDetails(const QVariantMap &details)
{
    const QVariant tds = details.value(ConnectedTds);
    const QVariant ntlm = details.value(ConnectedNTLMv2);
    m_tdsVersion = tds.isValid() ? std::optional(tds.toInt()) : std::nullopt;
    m_useNTLMv2 = ntlm.isValid() ? std::optional(ntlm.toBool()) : std::nullopt;
}

const QStringList &MSSQLDatabaseConnectionDetails::keywords() const
{
    return sqlKeywords();
}

const QStringList &MSSQLDatabaseConnectionDetails::dataTypes() const
{
    return MSSQLWordLists::dataTypes();
}

const QStringList &MSSQLDatabaseConnectionDetails::functions() const
{
    return sqlFunctions();
}

const QStringList &MSSQLDatabaseConnectionDetails::sqlKeywords()
{
    return MSSQLWordLists::keywords();
}

const QStringList &MSSQLDatabaseConnectionDetails::sqlFunctions()
{
    return MSSQLWordLists::functions();
}

const QStringList &MSSQLDatabaseConnectionDetails::functionsAndKeywords()
{
    return MSSQLWordLists::functionsAndKeywords();
}

SQLTokenizerOptions MSSQLDatabaseConnectionDetails::tokenizerOptions() const
{
    return MSSQLTokenizer::options();
}

SQLTokenizerOptions MSSQLDatabaseConnectionDetails::createPreParserOptions()
{
    SQLTokenizerOptions options;
    options.recognizesMSSQLVariables = true;
    return options;
}

bool MSSQLDatabaseConnectionDetails::isEqualToDatabaseConnectionDetails(
    const MSSQLDatabaseConnectionDetails *other) const
{
    return other && areEqualTexts(connectionId(), other->connectionId()) &&
           areEqualTexts(host(), other->host()) && areEqualTexts(username(), other->username()) &&
           areEqualTexts(password(), other->password()) && port() == other->port() &&
           areCompatibleTexts(m_federationStatement, other->m_federationStatement) &&
           areCompatibleTexts(database(), other->database());
}

void MSSQLDatabaseConnectionDetails::getHostAndPortForServer(const QString &server, quint16 *port,
                                                             QString *host) const
{
    QString serverName = server;
    if (const qsizetype backslash = server.indexOf(QLatin1Char('\\')); backslash >= 0) {
        serverName = server.left(backslash);
        const QString instance = server.mid(backslash + 1);
        if (*port == 0) {
            const QString address = KNHostCache::sharedInstance()->cachedIPAddressForHost(serverName);
            if (const quint16 answer = dbportforinstance(address, instance))
                *port = answer;
        }
    }
    VantorDBC::getHostAndPortForServer(serverName, port, host);
}
