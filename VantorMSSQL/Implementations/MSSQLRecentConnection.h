#pragma once

#include "Recent/SQLRecentConnection.h"
#include "Recent/SQLRecentConnectionList.h"

/// A remembered SQL Server connection. The static functions maintain the list of all of them.
class MSSQLRecentConnection : public SQLRecentConnection
{
public:
    MSSQLRecentConnection();
    ~MSSQLRecentConnection() override;

    QString database;               ///< the initial one; may be null
    int dumbAuthenticationType = 0; ///< the authentication that the user chose in the dialog

    /// The list; the first call loads it.
    static SQLRecentConnectionList &list();
    /// Makes the next list() load the list again. For tests.
    static void forgetList();

    /// The list, the latest first.
    static QList<SQLRecentConnectionPtr> RecentConnections();
    /// Same as SQLRecentConnectionList::update().
    static void UpdateRecentConnection(const SQLRecentConnectionPtr &entry);
    /// Same as SQLRecentConnectionList::remove().
    static void RemoveConnection(const SQLRecentConnectionPtr &entry);
    /// Same as SQLRecentConnectionList::removeAll().
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
