#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Scripts/MSSQLScriptAlterViewQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptDropViewQueryLoader.h"
#include "Scripts/MSSQLScriptStatementQueryLoader.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"
#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntrySectionTableColumns.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTableIndexes.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTableKeys.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/DatabaseTree/Triggers/MSSQLDatabaseTreeEntrySectionTableTriggers.h"

MSSQLDatabaseTreeEntryDatabaseTable::MSSQLDatabaseTreeEntryDatabaseTable(const QString &displayName,
                                                                         const QString &schema,
                                                                         const QString &tableName)
    : m_schema(schema)
    , m_tableName(tableName)
{
    setDisplayName(displayName);
}

KNDatabaseTreeEntry::List MSSQLDatabaseTreeEntryDatabaseTable::makeEntries()
{
    return {make<MSSQLDatabaseTreeEntrySectionTableColumns>(m_schema, m_tableName),
            make<MSSQLDatabaseTreeEntrySectionTableKeys>(m_schema, m_tableName),
            make<MSSQLDatabaseTreeEntrySectionTableIndexes>(m_schema, m_tableName, m_isView),
            make<MSSQLDatabaseTreeEntrySectionTableTriggers>(m_schema, m_tableName)};
}

QString MSSQLDatabaseTreeEntryDatabaseTable::iconName() const
{
    return m_isView ? QStringLiteral("DatabaseTree-View") : image();
}

QList<QStringList> MSSQLDatabaseTreeEntryDatabaseTable::dragNames() const
{
    if (displayName() == m_tableName)
        return {{m_tableName}};
    return {{m_schema, m_tableName}};
}

std::shared_ptr<DatabaseTreeDragDropEntry> MSSQLDatabaseTreeEntryDatabaseTable::dragDropEntry() const
{
    return std::make_shared<DatabaseTreeDragDropEntry>();
}

MSSQLScriptSubject MSSQLDatabaseTreeEntryDatabaseTable::scriptSubject() const
{
    return {m_isView ? QStringLiteral("VIEW") : QStringLiteral("TABLE"), m_schema, m_tableName,
            databaseConnectionDetails()};
}

QString MSSQLDatabaseTreeEntryDatabaseTable::selectStatement() const
{
    return KNFormat("SELECT TOP 100 * FROM %@;", MSSQLObjectPath::quoted({m_schema, m_tableName}));
}

void MSSQLDatabaseTreeEntryDatabaseTable::cmdDown()
{
    if (const auto helper = contextHelper())
        helper->performAction(QStringLiteral("executeQueryTab:"), selectStatement());
}

void MSSQLDatabaseTreeEntryDatabaseTable::cmdRight()
{
    if (const auto helper = contextHelper())
        helper->performAction(QStringLiteral("alterTable:"), shared_from_this());
}

KNMenu MSSQLDatabaseTreeEntryDatabaseTable::menu()
{
    return m_isView ? viewMenu() : tableMenu();
}

KNMenu MSSQLDatabaseTreeEntryDatabaseTable::tableMenu()
{
    const Ptr self = shared_from_this();
    return {QStringLiteral("Root"),
            {newQueryMenuItem(), KNMenuItem::separator(),
             actionItem("New table", "addNewTable:", MSSQLTreeCatalog::text(*this, "NewTable")),
             actionItem("Alter table", "alterTable:", self), actionItem("Rename table", "renameTable:", self),
             actionItem("Drop table", "confirmDropTable:", self),
             actionItem("Insert row", "displayInsertDialog:", self), KNMenuItem::separator(),
             actionItem("Select top 100 rows", "executeQueryTab:", selectStatement()), createScriptAsMenu(),
             KNMenuItem::separator(), createExportMenuItem(), importMenuItem(), KNMenuItem::separator(),
             refreshMenuItem()}};
}

KNMenu MSSQLDatabaseTreeEntryDatabaseTable::viewMenu()
{
    return {QStringLiteral("Root"),
            {newQueryMenuItem(), KNMenuItem::separator(),
             actionItem("Alter view", "addQueryTabWithQueryLoader:",
                        scriptSubject().script<MSSQLScriptAlterViewQueryLoader>(m_tableName, m_schema)),
             actionItem("Drop view", "confirmDropView:", shared_from_this()), KNMenuItem::separator(),
             actionItem("Select top 100 rows", "executeQueryTab:", selectStatement()),
             createScriptAsForViewMenu(), KNMenuItem::separator(), KNMenuItem::separator(),
             refreshMenuItem()}};
}

KNMenu MSSQLDatabaseTreeEntryDatabaseTable::additionalMenu()
{
    using Statement = MSSQLScriptStatementQueryLoader::Statement;
    const auto script = [&](Statement statement) {
        return std::make_shared<MSSQLScriptStatementQueryLoader>(statement, m_schema, m_tableName);
    };
    KNMenu additional{{},
                      {scriptAsMenuItem({{"SELECT to", script(Statement::Select)},
                                         {"INSERT to", script(Statement::Insert)},
                                         {"UPDATE to", script(Statement::Update)}})}};
    const QString title = QStringLiteral("Export");
    const KNMenuItem generate = actionItem("Generate Scripts…", "generateScripts:", shared_from_this());
    additional.items.push_back(m_isView ? generate : KNMenuItem::withSubmenu(title, {title, {generate}}));
    return additional;
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryDatabaseTable::propertiesLoader() const
{
    return MSSQLTreeCatalog::objectProperties(*this, m_schema, m_tableName);
}

KNMenuItem MSSQLDatabaseTreeEntryDatabaseTable::createExportMenuItem() const
{
    const QString title = QStringLiteral("Export");
    const QString name = MSSQLObjectPath::quoted({m_schema, m_tableName});
    return KNMenuItem::withSubmenu(
        title, {title,
                {actionItem("CSV", "exportTableAsCSV:", name), KNMenuItem::separator(),
                 createScriptToOptionsMenu("MySQL", std::make_shared<MSSQLScriptTableAsMySQLQueryLoader>(
                                                        m_tableName, m_schema, true, true, true))}});
}

KNMenuItem MSSQLDatabaseTreeEntryDatabaseTable::createScriptAsMenu() const
{
    // The DROP script for views is used for tables, too.
    const MSSQLScriptSubject table = scriptSubject();
    return scriptAsMenuItem(
        {{"CREATE to", table.creation<MSSQLScriptCreateTableQueryLoader>(m_tableName, m_schema)},
         {"DROP to", table.script<MSSQLScriptDropViewQueryLoader>(m_tableName, m_schema)},
         {"DROP and CREATE to",
          table.creation<MSSQLScriptDropAndCreateTableQueryLoader>(m_tableName, m_schema)}});
}

KNMenuItem MSSQLDatabaseTreeEntryDatabaseTable::createScriptAsForViewMenu() const
{
    const MSSQLScriptSubject view = scriptSubject();
    return scriptAsMenuItem(
        {{"CREATE to", view.creation<MSSQLScriptCreateViewQueryLoader>(m_tableName, m_schema)},
         {"DROP to", view.script<MSSQLScriptDropViewQueryLoader>(m_tableName, m_schema)},
         {"DROP and CREATE to",
          view.creation<MSSQLScriptDropAndCreateViewQueryLoader>(m_tableName, m_schema)}});
}
