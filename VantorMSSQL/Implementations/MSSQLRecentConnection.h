#pragma once

#include "Recent/SQLRecentConnection.h"
#include "Recent/SQLRecentConnectionList.h"

/// A remembered SQL Server connection. The class operations keep the list of them all.
class MSSQLRecentConnection : public SQLRecentConnection
{
public:
    MSSQLRecentConnection();
    ~MSSQLRecentConnection() override;

    QString database;               ///< the initial one; may be null
    int dumbAuthenticationType = 0; ///< the kind of authentication that was chosen in the dialog

    /// The list, which is loaded when it is asked for first.
    static SQLRecentConnectionList &list();
    /// Lets the list be loaded anew. For tests.
    static void forgetList();

    /// The list, the latest first.
    static QList<SQLRecentConnectionPtr> RecentConnections();
    /// As SQLRecentConnectionList::update().
    static void UpdateRecentConnection(const SQLRecentConnectionPtr &entry);
    /// As SQLRecentConnectionList::remove().
    static void RemoveConnection(const SQLRecentConnectionPtr &entry);
    /// As SQLRecentConnectionList::removeAll().
    static void removeAllRecentConnections();

    QString icon32() const override { return QStringLiteral("ConnectionWindow-MSSQL"); }
    QString iconLarge() const override { return QStringLiteral("ConnectionMSSQL"); }
    SQLRecentConnectionPtr copy() const override;
    void copyFields(const SQLRecentConnection &from) override;
    VantorDBCPtr createDatabaseConnectionDetails() const override;
    QVariantMap encodeWithCoder() const override;
    void initWithCoder(const QVariantMap &coder) override;

protected:
    MSSQLRecentConnection(const MSSQLRecentConnection &) = default;
};
