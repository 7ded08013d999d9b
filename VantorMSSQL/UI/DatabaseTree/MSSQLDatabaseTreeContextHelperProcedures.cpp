#include "Foundation/KNLogHelper.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"
#include "UI/Dialogs/MSSQLExecuteStoredProcedureWindowController/MSSQLExecuteStoredProcedureWindowController.h"
#include "UI/Workspace/KNStatementChoice.h"

namespace {

/// Opens the dialog; what it makes runs in a query tab.
void executeProcedure(KNWorkspace &workspace, const KNWorkspace::Settings &settings, const QString &schema,
                      const QString &name)
{
    KNLogHelper::sharedInstance()->logMessage(
        QStringLiteral("DatabaseTreeViewController-ExecuteStoredProcedure"));
    auto *const dialog =
        new MSSQLExecuteStoredProcedureWindowController(settings, schema, name, workspace.sheetParent());
    dialog->beginSheet([dialog, settings, name, pointer = workspace.weakPointer()](int code) {
        const auto existing = pointer.lock();
        if (code != 1 || !existing)
            return;
        KNChooseStatement(
            existing->sheetParent(), dialog->generatedQuery(), MSSQLCorrectedStatements::areUsed(),
            [settings, name, pointer](const QString &batch) {
                if (const auto window = pointer.lock())
                    window->openQueryText(batch, settings, KNWorkspace::QueryUse::Execute, name);
            });
    });
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addProcedureActions()
{
    addEntryAction<MSSQLDatabaseTreeEntryStoredProcedure>(
        QStringLiteral("executeStoredProcedure:"), [](KNWorkspace &workspace, const auto &entry) {
            executeProcedure(workspace, entry->databaseConnectionDetails(), entry->schema(),
                             entry->procedureName());
        });
}
