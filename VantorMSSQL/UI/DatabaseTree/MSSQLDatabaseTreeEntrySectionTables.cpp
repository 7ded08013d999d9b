#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTables.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "Foundation/KNLogHelper.h"
#include "Scripts/MSSQLScriptTablesAsMySQLQueryLoader.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLTableOrder.h"
#include "UI/DatabaseTree/MSSQLTreePreferences.h"

#include <QHash>
#include <QLocale>

#include <algorithm>

MSSQLDatabaseTreeEntrySectionTables::MSSQLDatabaseTreeEntrySectionTables()
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadTables",
          .retry = Retry::OnError,
          .protocol = {.clearsFirst = true, .returnsOnceStarted = false, .finishes = Finishes::OnMainQueue},
      })
{
}

std::shared_ptr<MSSQLDatabaseTreeEntrySectionTables> MSSQLDatabaseTreeEntrySectionTables::create()
{
    const std::shared_ptr<MSSQLDatabaseTreeEntrySectionTables> section(
        new MSSQLDatabaseTreeEntrySectionTables);
    section->listen();
    return section;
}

void MSSQLDatabaseTreeEntrySectionTables::listen()
{
    const auto observe = [this](const QString &name, auto handler) {
        return KNNotificationCenter::defaultCenter()->addObserver(
            name, [section = weak_from_this(), handler](const QString &, const QVariantMap &userInfo) {
                if (const Ptr alive = section.lock())
                    (static_cast<MSSQLDatabaseTreeEntrySectionTables &>(*alive).*handler)(userInfo);
            });
    };
    m_tableAdded = observe(KNDatabaseNotificationTable::TableAddedNotificationName,
                           &MSSQLDatabaseTreeEntrySectionTables::tableWasAdded);
    m_tableRemoved = observe(KNDatabaseNotificationTable::TableRemovedNotificationName,
                             &MSSQLDatabaseTreeEntrySectionTables::tableWasRemoved);
}

QString MSSQLDatabaseTreeEntrySectionTables::catalogQuery()
{
    if (m_defaultSchemaName.isNull())
        m_defaultSchemaName =
            MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(MSSQLTreeCatalog::settings(*this));
    return MSSQLTreeCatalog::text(*this, "DatabaseTree_ListTables");
}

void MSSQLDatabaseTreeEntrySectionTables::readRows(DatabaseResultSet &rows, List *entries)
{
    m_objectIds.clear();
    MSSQLCatalogSection::readRows(rows, entries);
}

/// Shows the number of rows of each table, as the catalog knows it.
void MSSQLDatabaseTreeEntrySectionTables::didReadRows(const List &entries, KNError *error)
{
    if (!MSSQLTreePreferences::isOn(MSSQLTreePreferences::ShowRowCounts))
        return;
    QHash<qint64, qint64> counts;
    *error = MSSQLCatalogReader::run(MSSQLTreeCatalog::settings(*this),
                                     {MSSQLTreeCatalog::text(*this, "List_TableRowCounts"), nullptr},
                                     [&](DatabaseResultSet *rows, const KNError &) {
                                         while (rows && rows->next())
                                             counts.insert(rows->numberForColumnIndex(0).toInt64(),
                                                           rows->numberForColumnIndex(1).toInt64());
                                     });
    const QLocale locale;
    for (std::size_t i = 0; i < entries.size() && i < m_objectIds.size(); ++i) {
        const auto count = counts.constFind(m_objectIds[i]);
        if (count != counts.constEnd())
            entries[i]->setDetails(KNFormat(*count == 1 ? "%@ row" : "%@ rows", locale.toString(*count)));
    }
    m_objectIds = {};
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionTables::entryForRow(const DatabaseResultSet &row)
{
    const QString schema = row.stringForColumnIndex(1);
    const QString tableName = row.stringForColumnIndex(2);
    if (schema.isNull())
        KNLogHelper::sharedInstance()->logMessage("Warning: Failed to get schema.");
    if (schema.isNull() || tableName.isNull())
        KNLogHelper::sharedInstance()->logMessage("Warning: Schema or table name is nil.");
    if (m_lastSchema != schema || m_lastSchema.isNull() != schema.isNull())
        m_lastSchema = schema;
    const bool isDefault = !schema.isNull() && schema == m_defaultSchemaName;
    auto table = make<MSSQLDatabaseTreeEntryDatabaseTable>(
        isDefault ? tableName : KNFormat("%@.%@", schema, tableName), m_lastSchema, tableName);
    table->setCanHaveChildren(true);
    m_objectIds.push_back(row.numberForColumnIndex(0).toInt64());
    return table;
}

void MSSQLDatabaseTreeEntrySectionTables::didLoadEntries(const Children &children)
{
    m_loadedInOrder = std::make_shared<const List>(MSSQLTableOrder(m_defaultSchemaName).sorted(*children));
}

void MSSQLDatabaseTreeEntrySectionTables::willFinishLoading()
{
    m_inOrder = std::move(m_loadedInOrder);
}

void MSSQLDatabaseTreeEntrySectionTables::addTable(const QString &tableName, const QString &tableSchema)
{
    if (!childEntries())
        return;
    const QString schema = tableSchema.isNull() ? m_defaultSchemaName : tableSchema;
    const bool isDefault = MSSQLTreeCatalog::compareNames(schema, m_defaultSchemaName) == 0;
    auto table = make<MSSQLDatabaseTreeEntryDatabaseTable>(
        isDefault ? tableName : KNFormat("%@.%@", schema, tableName), schema, tableName);
    table->setCanHaveChildren(true);
    m_inOrder =
        std::make_shared<const List>(MSSQLTableOrder(m_defaultSchemaName).inserted(*m_inOrder, table));
    setChildEntries(m_inOrder);
}

void MSSQLDatabaseTreeEntrySectionTables::removeChild(const Ptr &child)
{
    MSSQLCatalogSection::removeChild(child);
    if (!m_inOrder)
        return;
    List inOrder = *m_inOrder;
    std::erase(inOrder, child);
    m_inOrder = std::make_shared<const List>(std::move(inOrder));
}

void MSSQLDatabaseTreeEntrySectionTables::tableWasAdded(const QVariantMap &userInfo)
{
    const auto table = KNDatabaseNotificationTable::fromUserInfo(userInfo);
    const auto details = std::dynamic_pointer_cast<const MSSQLDatabaseConnectionDetails>(table.dbDetails());
    if (!details || !databaseConnectionDetails() ||
        !details->isEqualToDatabaseConnectionDetails(&MSSQLTreeCatalog::settings(*this)))
        return;
    addTable(table.tableName(), table.tableSchema());
    tellFinishLoading();
}

void MSSQLDatabaseTreeEntrySectionTables::tableWasRemoved(const QVariantMap &userInfo)
{
    const auto table = KNDatabaseNotificationTable::fromUserInfo(userInfo);
    const auto details = std::dynamic_pointer_cast<const MSSQLDatabaseConnectionDetails>(table.dbDetails());
    if (!details || !databaseConnectionDetails() ||
        !details->isEqualToDatabaseConnectionDetails(&MSSQLTreeCatalog::settings(*this)))
        return;
    KNLogHelper::sharedInstance()->logMessage("tableWasRemoved: %@", table.description());
    if (const Children children = childEntries()) {
        const auto found = std::find_if(children->begin(), children->end(), [&](const Ptr &child) {
            const auto *entry = dynamic_cast<const MSSQLDatabaseTreeEntryDatabaseTable *>(child.get());
            return entry && entry->schema() == table.tableSchema() && entry->tableName() == table.tableName();
        });
        if (found != children->end())
            removeChild(*found);
    }
    tellFinishLoading();
}

KNMenu MSSQLDatabaseTreeEntrySectionTables::menu()
{
    return {QStringLiteral("Root"),
            {newQueryMenuItem(), KNMenuItem::separator(),
             actionItem("New table", "addNewTable:", MSSQLTreeCatalog::text(*this, "NewTable")),
             KNMenuItem::separator(), createExportMenuItem(), importMenuItem(), KNMenuItem::separator(),
             refreshMenuItem()}};
}

KNMenu MSSQLDatabaseTreeEntrySectionTables::additionalMenu()
{
    const QString title = QStringLiteral("Export");
    const KNMenuItem generate = actionItem("Generate Scripts…", "generateScripts:", shared_from_this());
    return {{}, {KNMenuItem::withSubmenu(title, {title, {generate}})}};
}

KNMenuItem MSSQLDatabaseTreeEntrySectionTables::createExportMenuItem() const
{
    const QString title = QStringLiteral("Export");
    return KNMenuItem::withSubmenu(
        title,
        {title,
         {createScriptToOptionsMenu("MySQL", std::make_shared<MSSQLScriptTablesAsMySQLQueryLoader>())}});
}
