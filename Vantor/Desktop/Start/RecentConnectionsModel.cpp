#include "Desktop/Start/RecentConnectionsModel.h"

#include "Foundation/KNFormat.h"
#include "Recent/KNDBCTabColorHelper.h"

#include <QColor>

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
    const QDateTime date = connection.connectionDate.toLocalTime();
    if (!date.isValid())
        return QString();
    return date.date() == QDate::currentDate() ? date.toString(QStringLiteral("HH:mm"))
                                               : date.toString(QStringLiteral("yyyy-MM-dd"));
}

} // namespace

RecentConnectionsModel::RecentConnectionsModel(SQLRecentConnectionList &list, QObject *parent)
    : QAbstractListModel(parent)
    , m_list(list)
    , m_connections(list.connections())
{
}

void RecentConnectionsModel::reload()
{
    beginResetModel();
    m_connections = m_list.connections();
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
        return KNFormat("%@, %@", connection.hostDisplay(), detailOf(connection));
    case DetailRole:
        return detailOf(connection);
    case DateRole:
        return dateOf(connection);
    case ColourRole:
        return QColor(KNDBCTabColorHelper::colorForId(connection.connectionId));
    case SearchRole:
        return KNFormat("%@\n%@\n%@", connection.alias, connection.serverHost, detailOf(connection));
    default:
        return {};
    }
}
