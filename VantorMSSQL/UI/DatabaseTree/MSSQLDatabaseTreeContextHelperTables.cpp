#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Database/KNStatementRun.h"
#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "Foundation/KNFormat.h"
#include "RowEditing/MSSQLEditRowHelper.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "TableDesign/MSSQLTableScript.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/RowEditing/KNEditRowWindowController.h"
#include "UI/TableDesigner/MSSQLCreateTableWindowController.h"
#include "UI/TableDesigner/MSSQLRenameTableWindowController.h"
#include "UI/TableDesigner/MSSQLTableDesignerViewController.h"
#include "UI/Workspace/KNProgressSheet.h"
#include "UI/Workspace/KNStatementChoice.h"

namespace {

using TableEntry = std::shared_ptr<MSSQLDatabaseTreeEntryDatabaseTable>;

MSSQLDesignedTable designedTable(const MSSQLDatabaseTreeEntryDatabaseTable &entry)
{
    const auto &settings = MSSQLTreeCatalog::settings(entry);
    return {entry.schema(), entry.tableName(),
            MSSQLDefaultSchemaHelper::sharedInstance()->knownSchemaForDBC(settings).value_or(QString())};
}

void runRename(KNWorkspace &workspace, const TableEntry &entry, const QString &newName,
               const QString &statement)
{
    const std::shared_ptr<KNProgressSheet> sheet = KNProgressSheet::create(workspace.sheetParent());
    sheet->setLabelString(QCoreApplication::translate("MSSQLRenameTableWindowController", "Renaming Table"));
    sheet->begin();
    const auto finished = [pointer = workspace.weakPointer(), entry, newName,
                           sheet](const KNStatementOutcome &outcome) {
        sheet->end();
        const auto existing = pointer.lock();
        if (!existing)
            return;
        if (!outcome.succeeded())
            return KNAlerts::shared().showError(existing->sheetParent(), outcome.error);
        MSSQLTableDesignerViewController::tableWasRenamed(entry->schema(), entry->tableName(), newName,
                                                          entry->databaseConnectionDetails(), *existing);
        if (const auto parent = entry->parent())
            existing->refreshTreeEntry(parent);
        existing->deselectTree();
    };
    KNStatementRun::start({statement, false, QStringLiteral("MSSQL::renameTable")},
                          *entry->databaseConnectionDetails(), workspace.sheetParent(), finished);
}

void renameTable(KNWorkspace &workspace, const TableEntry &entry)
{
    if (entry->isView())
        return;
    const MSSQLDesignedTable table = designedTable(*entry);
    auto *const dialog = new MSSQLRenameTableWindowController(table, entry->databaseConnectionDetails(),
                                                              workspace.sheetParent());
    dialog->beginSheet([dialog, table, entry, pointer = workspace.weakPointer()](int code) {
        const auto existing = pointer.lock();
        if (code != 1 || !existing)
            return;
        const QString newName = dialog->tableName();
        KNChooseStatement(existing->sheetParent(), MSSQLTableScript::rename(table, newName),
                          MSSQLCorrectedStatements::areUsed(),
                          [entry, newName, pointer](const QString &statement) {
                              if (const auto window = pointer.lock())
                                  runRename(*window, entry, newName, statement);
                          });
    });
}

void alterTable(KNWorkspace &workspace, const TableEntry &entry)
{
    if (!entry->isView() && !entry->tableName().isEmpty())
        MSSQLTableDesignerViewController::open(entry->schema(), entry->tableName(),
                                               entry->databaseConnectionDetails(), workspace);
}

void addNewTable(KNWorkspace &workspace, const KNMenuRepresentedObject &)
{
    const KNWorkspace::Settings settings = workspace.selectedSettings();
    auto *const dialog = new MSSQLCreateTableWindowController(settings, workspace.sheetParent());
    dialog->beginSheet([dialog, settings, selected = workspace.selectedTreeEntry(),
                        pointer = workspace.weakPointer()](int code) {
        const auto existing = pointer.lock();
        if (code != 1 || !existing)
            return;
        KNDatabaseNotificationTable::postAdditionNotificationForTable(
            dialog->createdTableName(), dialog->createdTableSchemaName(), *settings);
        if (selected)
            existing->refreshTreeEntry(selected);
        MSSQLTableDesignerViewController::open(dialog->createdTableSchemaName(), dialog->createdTableName(),
                                               settings, *existing);
    });
}

void displayInsertDialog(KNWorkspace &workspace, const TableEntry &entry)
{
    if (entry->isView())
        return;
    const auto row = std::make_shared<MSSQLEditRowHelper>(entry->databaseConnectionDetails(), entry->schema(),
                                                          entry->tableName(), std::nullopt);
    auto *const form =
        new KNEditRowWindowController(row, MSSQLCorrectedStatements::areUsed(), workspace.sheetParent());
    form->beginSheet({});
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addTableActions()
{
    addAction(QStringLiteral("addNewTable:"), addNewTable);
    addEntryAction<MSSQLDatabaseTreeEntryDatabaseTable>(QStringLiteral("alterTable:"), alterTable);
    addEntryAction<MSSQLDatabaseTreeEntryDatabaseTable>(QStringLiteral("renameTable:"), renameTable);
    addEntryAction<MSSQLDatabaseTreeEntryDatabaseTable>(QStringLiteral("displayInsertDialog:"),
                                                        displayInsertDialog);
}
