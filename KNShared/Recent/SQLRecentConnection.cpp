#include "Recent/SQLRecentConnection.h"

#include "Recent/KNDBCTabColorHelper.h"

#include <QUuid>

namespace {

QString storedText(const QDateTime &date)
{
    return date.toUTC().toString(Qt::ISODateWithMs);
}

QDateTime dateIn(const QVariant &stored)
{
    return QDateTime::fromString(stored.toString(), Qt::ISODateWithMs);
}

} // namespace

SQLRecentConnection::SQLRecentConnection() = default;
SQLRecentConnection::~SQLRecentConnection() = default;

QString SQLRecentConnection::createConnectionId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

void SQLRecentConnection::copyFields(const SQLRecentConnection &from)
{
    alias = from.alias;
    username = from.username;
    password = from.password;
    serverHost = from.serverHost;
    serverPort = from.serverPort;
    rememberPassword = from.rememberPassword;
    connectionDate = from.connectionDate;
    lastUsed = from.lastUsed;
    colour = from.colour;
    group = from.group;
    isProduction = from.isProduction;
    connectionSessionParameters = from.connectionSessionParameters;
    sshTunnelDetails = from.sshTunnelDetails;
}

void SQLRecentConnection::registerColour() const
{
    KNDBCTabColorHelper::setColorFromAliasTemporary(alias, connectionId);
    if (!colour.isEmpty())
        KNDBCTabColorHelper::setColorForId(colour, connectionId);
}

void SQLRecentConnection::fill(VantorDBC &details) const
{
    details.setConnectionId(connectionId);
    details.setAlias(alias);
    details.setHost(serverHost);
    details.setUsername(username);
    details.setPassword(password);
    details.setPort(serverPort);
    details.setSessionParameters(connectionSessionParameters);
    details.setSSHTunnelModel(sshTunnelDetails);
    details.setProduction(isProduction);
}

QVariantMap SQLRecentConnection::encodeWithCoder() const
{
    return {{QStringLiteral("connectionId"), connectionId},
            {QStringLiteral("alias"), alias},
            {QStringLiteral("serverHost"), serverHost},
            {QStringLiteral("username"), username},
            {QStringLiteral("password"), rememberPassword ? password : QStringLiteral("")},
            {QStringLiteral("serverPort"), static_cast<qint64>(serverPort)},
            {QStringLiteral("rememberPassword"), rememberPassword},
            {QStringLiteral("connectionDate"), storedText(connectionDate)},
            {QStringLiteral("lastUsed"), storedText(lastUsed)},
            {QStringLiteral("colour"), colour},
            {QStringLiteral("group"), group},
            {QStringLiteral("isProduction"), isProduction},
            {QStringLiteral("connectionSessionParameters"), connectionSessionParameters},
            {QStringLiteral("sshTunnelDetails"), sshTunnelDetails.toVariantMap()}};
}

void SQLRecentConnection::initWithCoder(const QVariantMap &coder)
{
    connectionId = coder.value(QStringLiteral("connectionId")).toString();
    if (connectionId.isEmpty())
        connectionId = createConnectionId();
    alias = coder.value(QStringLiteral("alias")).toString();
    serverHost = coder.value(QStringLiteral("serverHost")).toString();
    username = QStringLiteral("") + coder.value(QStringLiteral("username")).toString(); // a login needs one
    rememberPassword = coder.value(QStringLiteral("rememberPassword")).toBool();
    password = rememberPassword ? coder.value(QStringLiteral("password")).toString() : QStringLiteral("");
    serverPort = static_cast<quint16>(coder.value(QStringLiteral("serverPort")).toUInt());
    connectionDate = dateIn(coder.value(QStringLiteral("connectionDate")));
    // Older versions changed the date of the connection by connecting.
    lastUsed = dateIn(coder.value(QStringLiteral("lastUsed"), storedText(connectionDate)));
    colour = coder.value(QStringLiteral("colour")).toString();
    group = coder.value(QStringLiteral("group")).toString();
    isProduction = coder.value(QStringLiteral("isProduction")).toBool();
    connectionSessionParameters = coder.value(QStringLiteral("connectionSessionParameters")).toMap();
    sshTunnelDetails =
        KNSSHTunnelModel::fromVariantMap(coder.value(QStringLiteral("sshTunnelDetails")).toMap());
}
