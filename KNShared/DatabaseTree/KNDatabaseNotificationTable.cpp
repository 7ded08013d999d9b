#include "DatabaseTree/KNDatabaseNotificationTable.h"

#include "Foundation/KNFormat.h"

namespace {

const QString ObjectKey = QStringLiteral("object");

} // namespace

const QString KNDatabaseNotificationTable::TableAddedNotificationName =
    QStringLiteral("KNDatabaseNotificationTableAddedNotification");
const QString KNDatabaseNotificationTable::TableRemovedNotificationName =
    QStringLiteral("KNDatabaseNotificationTableRemovedNotification");

void KNDatabaseNotificationTable::postAdditionNotificationForTable(const QString &tableName,
                                                                   const QString &inSchema,
                                                                   const VantorDBC &forDBC)
{
    post(TableAddedNotificationName, tableName, inSchema, forDBC);
}

void KNDatabaseNotificationTable::postRemovalNotificationForTable(const QString &tableName,
                                                                  const QString &inSchema,
                                                                  const VantorDBC &forDBC)
{
    post(TableRemovedNotificationName, tableName, inSchema, forDBC);
}

void KNDatabaseNotificationTable::post(const QString &name, const QString &tableName, const QString &schema,
                                       const VantorDBC &dbc)
{
    KNDatabaseNotificationTable table;
    table.m_dbDetails = dbc.copy();
    table.m_tableName = tableName;
    table.m_tableSchema = schema;
    KNNotificationCenter::defaultCenter()->post(name, {{ObjectKey, QVariant::fromValue(table)}});
}

KNDatabaseNotificationTable KNDatabaseNotificationTable::fromUserInfo(const QVariantMap &userInfo)
{
    return userInfo.value(ObjectKey).value<KNDatabaseNotificationTable>();
}

QString KNDatabaseNotificationTable::description() const
{
    return KNFormat("%@.%@ (%@)", m_tableSchema, m_tableName,
                    m_dbDetails ? m_dbDetails->description() : QString());
}
