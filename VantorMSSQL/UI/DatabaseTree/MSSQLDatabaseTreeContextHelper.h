#pragma once

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "UI/Workspace/KNWorkspace.h"

/// Adds the actions of SQL Server's object tree to the helper of a window's tree. Each group of actions has
/// its own source, MSSQLDatabaseTreeContextHelper<Group>. On the UI thread.
class MSSQLDatabaseTreeContextHelper
{
public:
    /// Both outlive this object. The helper may outlive the workspace.
    MSSQLDatabaseTreeContextHelper(KNDatabaseTreeContextHelper &helper, KNWorkspace &workspace)
        : m_helper(helper)
        , m_workspace(workspace.weakPointer())
    {
    }

    /// Adds the actions of all groups.
    void addActions();

    /// Adds an action that does nothing if the workspace has been deleted.
    using Action = std::function<void(KNWorkspace &workspace, const KNMenuRepresentedObject &object)>;
    void addAction(const QString &name, Action action);

    /// Adds an action on an entry of one class: the entry that the menu item represents, or else the selected
    /// one. It does nothing for entries of other classes.
    template <typename Entry>
    void
    addEntryAction(const QString &name,
                   std::function<void(KNWorkspace &workspace, const std::shared_ptr<Entry> &entry)> action)
    {
        addAction(name, [action = std::move(action)](KNWorkspace &workspace,
                                                     const KNMenuRepresentedObject &object) {
            const auto *represented = std::get_if<KNDatabaseTreeEntry::Ptr>(&object);
            const auto entry = std::dynamic_pointer_cast<Entry>(
                represented && *represented ? *represented : workspace.selectedTreeEntry());
            if (entry)
                action(workspace, entry);
        });
    }

private:
    void addActivityActions();
    void addAgentActions();
    void addDropActions();
    void addExportActions();
    void addFederationActions();
    void addProcedureActions();
    void addRenameActions();
    void addScriptActions();
    void addTableActions();
    void addTemplateActions();

    KNDatabaseTreeContextHelper &m_helper;
    const std::weak_ptr<KNWorkspace> m_workspace;
};
