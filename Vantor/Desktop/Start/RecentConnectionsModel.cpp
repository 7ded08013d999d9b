#include "Desktop/Start/RecentConnectionsModel.h"

#include "Foundation/KNFormat.h"
#include "Recent/KNDBCTabColorHelper.h"

#include <QColor>

#include <algorithm>

namespace {

QString detailOf(const SQLRecentConnection &connection)
{
    const VantorDBCPtr details = connection.createDatabaseConnectionDetails();
    QString text = connection.alias.isEmpty() ? connection.username
                                              : KNFormat(RecentConnectionsModel::tr("%@ at %@"),
                                                         connection.username, connection.serverHost);
    if (!details->database().isEmpty())
        text = KNFormat(RecentConnectionsModel::tr("%@, database %@"), text, details->database());
    if (connection.sshTunnelDetails.isUsed())
        text = KNFormat(RecentConnectionsModel::tr("%@, through %@"), text, connection.sshTunnelDetails.host);
    return text;
}

QString dateOf(const SQLRecentConnection &connection)
{
    const QDateTime date = connection.lastUsed.toLocalTime();
    if (!date.isValid())
        return QString();
    return date.date() == QDate::currentDate() ? date.toString(QStringLiteral("HH:mm"))
                                               : date.toString(QStringLiteral("yyyy-MM-dd"));
}

QString accessibleTextOf(const SQLRecentConnection &connection)
{
    QString text = KNFormat("%@, %@", connection.hostDisplay(), detailOf(connection));
    if (connection.isProduction)
        text = KNFormat(RecentConnectionsModel::tr("%@, production"), text);
    if (!connection.group.isEmpty())
        text = KNFormat(RecentConnectionsModel::tr("%@, group %@"), text, connection.group);
    return text;
}

/// Connections that were never used come where they were made.
QDateTime orderOf(const SQLRecentConnection &connection)
{
    return connection.lastUsed.isValid() ? connection.lastUsed : connection.connectionDate;
}

/// Connections without a group come first, then the groups by name. In each, the latest is first.
QList<SQLRecentConnectionPtr> sorted(QList<SQLRecentConnectionPtr> connections)
{
    std::stable_sort(connections.begin(), connections.end(),
                     [](const SQLRecentConnectionPtr &left, const SQLRecentConnectionPtr &right) {
                         const int groups = left->group.compare(right->group, Qt::CaseInsensitive);
                         return groups != 0 ? groups < 0 : orderOf(*left) > orderOf(*right);
                     });
    return connections;
}

} // namespace

RecentConnectionsModel::RecentConnectionsModel(SQLRecentConnectionList &list, QObject *parent)
    : QAbstractListModel(parent)
    , m_list(list)
    , m_connections(sorted(list.connections()))
{
}

void RecentConnectionsModel::reload()
{
    beginResetModel();
    m_connections = sorted(m_list.connections());
    endResetModel();
}

SQLRecentConnectionPtr RecentConnectionsModel::connection(const QModelIndex &index) const
{
    return m_connections.value(index.row());
}

int RecentConnectionsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_connections.size());
}

QVariant RecentConnectionsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_connections.size())
        return {};
    const SQLRecentConnection &connection = *m_connections.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return connection.hostDisplay();
    case Qt::AccessibleTextRole:
        return accessibleTextOf(connection);
    case GroupRole:
        return connection.group;
    case ProductionRole:
        return connection.isProduction;
    case DetailRole:
        return detailOf(connection);
    case DateRole:
        return dateOf(connection);
    case ColourRole:
        return QColor(KNDBCTabColorHelper::colorForId(connection.connectionId));
    case SearchRole:
        return KNFormat("%@\n%@\n%@\n%@", connection.alias, connection.serverHost, detailOf(connection),
                        connection.group);
    default:
        return {};
    }
}
