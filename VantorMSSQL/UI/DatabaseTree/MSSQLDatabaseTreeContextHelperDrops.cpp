#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptDropColumnInTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropIndexQueryLoader.h"
#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropViewQueryLoader.h"
#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntryDatabaseTableColumn.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableIndex.h"
#include "UI/DatabaseTree/MSSQLDropAction.h"
#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntryFunction.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"
#include "UI/TableDesigner/MSSQLTableDesignerViewController.h"

namespace {

struct Texts
{
    const char *title;
    const char *information;
    const char *progress;
    const char *errorDomain;
};

/// The user sees these texts; lupdate finds them here.
#define TEXT(text) QT_TRANSLATE_NOOP("MSSQLDropAction", text)
constexpr Texts Table = {TEXT("Do you really want to drop the table '%@'?"),
                         TEXT("Once a table has been removed, it cannot be recovered."),
                         TEXT("Dropping Table '%@'"), "MSSQL::dropTable"};
constexpr Texts View = {TEXT("Do you really want to drop the view '%@'?"),
                        TEXT("Once a view has been removed, it cannot be recovered."),
                        TEXT("Dropping view '%@'"), "MSSQL::dropView"};
constexpr Texts Column = {TEXT("Do you really want to drop the column '%@'?"),
                          TEXT("Once a column has been removed, it cannot be recovered."),
                          TEXT("Dropping Column '%@'"), "MSSQL::dropColumn"};
constexpr Texts Procedure = {TEXT("Do you really want to drop the stored procedure '%@'?"),
                             TEXT("Once a stored procedure has been removed, it cannot be recovered."),
                             TEXT("Dropping procedure '%@'"), "MSSQL::dropProcedure"};
constexpr Texts Function = {TEXT("Do you really want to drop the function '%@'?"),
                            TEXT("Once a function has been removed, it cannot be recovered."),
                            TEXT("Dropping function '%@'"), "MSSQL::dropFunction"};
constexpr Texts Index = {TEXT("Do you really want to drop the index '%@'?"),
                         TEXT("Once an index has been removed, it cannot be recovered."),
                         TEXT("Dropping index '%@'"), "MSSQL::dropIndex"};
#undef TEXT

QString translated(const char *text)
{
    return QCoreApplication::translate("MSSQLDropAction", text);
}

MSSQLDropAction dropOf(const KNDatabaseTreeEntry::Ptr &entry, const QString &name, const Texts &texts,
                       KNQueryLoaderPtr statement)
{
    return {entry,
            KNFormat(translated(texts.title), name),
            translated(texts.information),
            KNFormat(translated(texts.progress), name),
            QString::fromLatin1(texts.errorDomain),
            std::move(statement)};
}

MSSQLScriptSubject subject(const char *kind, const KNDatabaseTreeEntry &entry, const QString &schema,
                           const QString &name, const QString &table = {})
{
    return {QString::fromLatin1(kind), schema, name, entry.databaseConnectionDetails(), table};
}

/// Lets the open designer of a table show that the table, or a part of it, is gone.
template <typename Entry>
void reloadDesigner(KNWorkspace &workspace, const Entry &entry)
{
    MSSQLTableDesignerViewController::tableWasChanged(entry.schema(), entry.tableName(),
                                                      entry.databaseConnectionDetails(), workspace);
}

void dropTable(KNWorkspace &workspace, const std::shared_ptr<MSSQLDatabaseTreeEntryDatabaseTable> &entry)
{
    if (entry->isView())
        return;
    const QString schema = entry->schema();
    const QString name = entry->tableName();
    MSSQLDropAction drop =
        dropOf(entry, name, Table,
               subject("TABLE", *entry, schema, name).script<MSSQLScriptDropTableQueryLoader>(name, schema));
    drop.dropped = [entry](KNWorkspace &window) {
        KNDatabaseNotificationTable::postRemovalNotificationForTable(entry->tableName(), entry->schema(),
                                                                     *entry->databaseConnectionDetails());
        reloadDesigner(window, *entry);
    };
    drop.begin(workspace);
}

void dropView(KNWorkspace &workspace, const std::shared_ptr<MSSQLDatabaseTreeEntryDatabaseTable> &entry)
{
    if (!entry->isView())
        return;
    dropOf(entry, entry->tableName(), View,
           subject("VIEW", *entry, entry->schema(), entry->tableName())
               .script<MSSQLScriptDropViewQueryLoader>(entry->tableName(), entry->schema()))
        .begin(workspace);
}

void dropColumn(KNWorkspace &workspace,
                const std::shared_ptr<MSSQLDatabaseTreeEntryDatabaseTableColumn> &entry)
{
    MSSQLDropAction drop =
        dropOf(entry, entry->columnName(), Column,
               subject("COLUMN", *entry, entry->schema(), entry->columnName(), entry->tableName())
                   .script<MSSQLScriptDropColumnInTableQueryLoader>(entry->columnName(), entry->tableName(),
                                                                    entry->schema()));
    drop.dropped = [entry](KNWorkspace &window) { reloadDesigner(window, *entry); };
    drop.begin(workspace);
}

void dropProcedure(KNWorkspace &workspace,
                   const std::shared_ptr<MSSQLDatabaseTreeEntryStoredProcedure> &entry)
{
    dropOf(entry, entry->procedureName(), Procedure,
           subject("PROCEDURE", *entry, entry->schema(), entry->procedureName())
               .script<MSSQLScriptDropStoredProcedureQueryLoader>(entry->procedureName(), entry->schema()))
        .begin(workspace);
}

void dropFunction(KNWorkspace &workspace, const std::shared_ptr<MSSQLDatabaseTreeEntryFunction> &entry)
{
    dropOf(entry, entry->functionName(), Function,
           subject("FUNCTION", *entry, entry->schema(), entry->functionName())
               .script<MSSQLScriptDropFunctionQueryLoader>(entry->functionName(), entry->schema()))
        .begin(workspace);
}

void dropIndex(KNWorkspace &workspace, const std::shared_ptr<MSSQLDatabaseTreeEntryTableIndex> &entry)
{
    const QString name = entry->indexName();
    MSSQLDropAction drop =
        dropOf(entry, name, Index,
               subject("INDEX", *entry, entry->schema(), name, entry->tableName())
                   .script<MSSQLScriptDropIndexQueryLoader>(name, entry->tableName(), entry->schema()));
    drop.dropped = [entry, name](KNWorkspace &window) {
        window.notifyUser(
            QCoreApplication::translate("MSSQLDropAction", "Index has been dropped"),
            KNFormat(QCoreApplication::translate("MSSQLDropAction", "Index %@ has been dropped"), name));
        reloadDesigner(window, *entry);
    };
    drop.begin(workspace);
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addDropActions()
{
    addEntryAction<MSSQLDatabaseTreeEntryDatabaseTable>(QStringLiteral("confirmDropTable:"), dropTable);
    addEntryAction<MSSQLDatabaseTreeEntryDatabaseTable>(QStringLiteral("confirmDropView:"), dropView);
    addEntryAction<MSSQLDatabaseTreeEntryDatabaseTableColumn>(QStringLiteral("confirmDropColumn:"),
                                                              dropColumn);
    addEntryAction<MSSQLDatabaseTreeEntryStoredProcedure>(QStringLiteral("confirmDropProcedure:"),
                                                          dropProcedure);
    addEntryAction<MSSQLDatabaseTreeEntryFunction>(QStringLiteral("confirmDropFunction:"), dropFunction);
    addEntryAction<MSSQLDatabaseTreeEntryTableIndex>(QStringLiteral("confirmDropIndex:"), dropIndex);
}
