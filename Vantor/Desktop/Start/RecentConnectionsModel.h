#pragma once

#include "Recent/SQLRecentConnectionList.h"

#include <QAbstractListModel>

/// The remembered connections: those without a group, then the groups by name; in each, the latest first. On
/// the UI thread.
class RecentConnectionsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        DetailRole = Qt::UserRole, ///< account, server and database in one line
        DateRole,                  ///< time of the last use, formatted for display
        ColourRole,                ///< a QColor, invalid for none
        GroupRole,                 ///< the name of the group; empty for none
        ProductionRole,            ///< whether it is a production connection
        SearchRole,                ///< all texts
    };

    explicit RecentConnectionsModel(SQLRecentConnectionList &list, QObject *parent = nullptr);

    /// Reloads the list.
    void reload();
    SQLRecentConnectionPtr connection(const QModelIndex &index) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    SQLRecentConnectionList &m_list;
    QList<SQLRecentConnectionPtr> m_connections;
};
