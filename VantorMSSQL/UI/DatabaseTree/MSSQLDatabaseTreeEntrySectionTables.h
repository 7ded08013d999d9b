#pragma once

#include "Foundation/KNNotificationCenter.h"
#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The tables of a database. Those of the login's default schema are shown by their bare names. What the
/// application itself creates and drops is taken up without another load.
class MSSQLDatabaseTreeEntrySectionTables : public MSSQLCatalogSection
{
public:
    /// A section that listens to notifications.
    static std::shared_ptr<MSSQLDatabaseTreeEntrySectionTables> create();

    QString displayName() const override { return QStringLiteral("Tables"); }
    KNMenu menu() override;
    void removeChild(const Ptr &child) override;

    /// Adds a table and sorts the list. A null schema is the default one. Nothing happens before the tables
    /// were loaded. On the UI thread.
    void addTable(const QString &tableName, const QString &tableSchema);

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;
    void didLoadEntries(const Children &children) override;
    void willFinishLoading() override;

private:
    MSSQLDatabaseTreeEntrySectionTables();

    void listen();
    void tableWasAdded(const QVariantMap &userInfo);
    void tableWasRemoved(const QVariantMap &userInfo);
    KNMenuItem createExportMenuItem() const;

    QString m_defaultSchemaName; ///< null until the first load, which sets it
    QString m_lastSchema;        ///< of the row read last: equal schemas share their text
    Children m_loadedInOrder;    ///< what a load leaves for willFinishLoading()
    Children m_inOrder;          ///< the children as MSSQLTableOrder has them; on the UI thread
    KNNotificationCenter::Token m_tableAdded;
    KNNotificationCenter::Token m_tableRemoved;
};
