#pragma once

#include "Foundation/KNNotificationCenter.h"
#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The tables of a database. Those of the login's default schema are shown without the schema. Tables that
/// the application itself creates or drops are added and removed without another load.
class MSSQLDatabaseTreeEntrySectionTables : public MSSQLCatalogSection
{
public:
    /// Creates a section that observes notifications.
    static std::shared_ptr<MSSQLDatabaseTreeEntrySectionTables> create();

    QString displayName() const override { return QStringLiteral("Tables"); }
    KNMenu menu() override;
    void removeChild(const Ptr &child) override;

    /// Adds a table in sort order. A null schema is the default one. Does nothing before the tables are
    /// loaded. On the UI thread.
    void addTable(const QString &tableName, const QString &tableSchema);

protected:
    KNMenu additionalMenu() override;
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;
    void readRows(DatabaseResultSet &rows, List *entries) override;
    void didReadRows(const List &entries, KNError *error) override;
    void didLoadEntries(const Children &children) override;
    void willFinishLoading() override;

private:
    MSSQLDatabaseTreeEntrySectionTables();

    void listen();
    void tableWasAdded(const QVariantMap &userInfo);
    void tableWasRemoved(const QVariantMap &userInfo);
    KNMenuItem createExportMenuItem() const;

    QString m_defaultSchemaName;     ///< null until the first load, which sets it
    QString m_lastSchema;            ///< of the last row; tables of equal schemas share the string
    std::vector<qint64> m_objectIds; ///< of the loaded entries, while row counts are read
    Children m_loadedInOrder;        ///< set by a load, taken by willFinishLoading()
    Children m_inOrder;              ///< the children sorted by MSSQLTableOrder; on the UI thread
    KNNotificationCenter::Token m_tableAdded;
    KNNotificationCenter::Token m_tableRemoved;
};
