#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"

void MSSQLDatabaseTreeContextHelper::addActions()
{
    addActivityActions();
    addAgentActions();
    addDropActions();
    addExportActions();
    addFederationActions();
    addProcedureActions();
    addRenameActions();
    addScriptActions();
    addTableActions();
    addTemplateActions();
}

void MSSQLDatabaseTreeContextHelper::addAction(const QString &name, Action action)
{
    m_helper.addAction(
        name, [workspace = m_workspace, action = std::move(action)](const KNMenuRepresentedObject &object) {
            if (const auto existing = workspace.lock())
                action(*existing, object);
        });
}
