#include "Desktop/Scripts/ScriptActions.h"

#include "UI/Alerts/KNAlerts.h"
#include "UI/Scripts/KNGenerateScriptsWindowController.h"

void ScriptActions::generate(KNWorkspace &workspace, const KNDocumentTab *document)
{
    KNWorkspace::Settings settings = workspace.selectedSettings();
    if (settings->database().isEmpty() && document)
        settings = document->databaseConnectionDetails();
    if (settings->database().isEmpty() || !settings->createDatabaseScripter()) {
        KNAlerts::shared().showMessage(workspace.sheetParent(), tr("No database is selected."),
                                       tr("Select a database in the object explorer first."));
        return;
    }
    const auto all = [](const KNScriptObject &) { return true; };
    (new KNGenerateScriptsWindowController(settings, all, workspace.sheetParent()))->beginSheet({});
}
