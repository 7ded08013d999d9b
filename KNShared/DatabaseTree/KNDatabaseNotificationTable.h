#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNNotificationCenter.h"
#include "KNSharedExport.h"

/// Notification that the application has created or dropped a table, posted by name at the default
/// notification centre on the UI thread.
class KNSHARED_EXPORT KNDatabaseNotificationTable
{
public:
    static const QString TableAddedNotificationName;
    static const QString TableRemovedNotificationName;

    static void postAdditionNotificationForTable(const QString &tableName, const QString &inSchema,
                                                 const VantorDBC &forDBC);
    static void postRemovalNotificationForTable(const QString &tableName, const QString &inSchema,
                                                const VantorDBC &forDBC);
    /// Reads a notification's content; the settings are null if it is not one of these notifications.
    static KNDatabaseNotificationTable fromUserInfo(const QVariantMap &userInfo);

    /// The settings of the table's connection and database.
    const std::shared_ptr<const VantorDBC> &dbDetails() const { return m_dbDetails; }
    QString tableName() const { return m_tableName; }
    /// Null for the login's default schema.
    QString tableSchema() const { return m_tableSchema; }
    /// A description for the log.
    QString description() const;

private:
    static void post(const QString &name, const QString &tableName, const QString &schema,
                     const VantorDBC &dbc);

    std::shared_ptr<const VantorDBC> m_dbDetails;
    QString m_tableName;
    QString m_tableSchema;
};

Q_DECLARE_METATYPE(KNDatabaseNotificationTable)
