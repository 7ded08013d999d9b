#include "Recent/SQLRecentConnection.h"

#include <QUuid>

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
    connectionSessionParameters = from.connectionSessionParameters;
    sshTunnelDetails = from.sshTunnelDetails;
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
            {QStringLiteral("connectionDate"), connectionDate.toUTC().toString(Qt::ISODateWithMs)},
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
    username = coder.value(QStringLiteral("username")).toString();
    rememberPassword = coder.value(QStringLiteral("rememberPassword")).toBool();
    password = rememberPassword ? coder.value(QStringLiteral("password")).toString() : QStringLiteral("");
    serverPort = static_cast<quint16>(coder.value(QStringLiteral("serverPort")).toUInt());
    connectionDate =
        QDateTime::fromString(coder.value(QStringLiteral("connectionDate")).toString(), Qt::ISODateWithMs);
    connectionSessionParameters = coder.value(QStringLiteral("connectionSessionParameters")).toMap();
    sshTunnelDetails =
        KNSSHTunnelModel::fromVariantMap(coder.value(QStringLiteral("sshTunnelDetails")).toMap());
}
