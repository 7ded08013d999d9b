#pragma once

#include "DatabaseTree/KNMenuItem.h"
#include "KNSharedExport.h"

#include <QHash>

#include <functional>

/// Performs the actions of the tree's menus by name. Used on the UI thread.
class KNSHARED_EXPORT KNDatabaseTreeContextHelper
{
public:
    using Action = std::function<void(const KNMenuRepresentedObject &)>;

    virtual ~KNDatabaseTreeContextHelper();

    /// Registers an action; replaces an action of the same name.
    void addAction(const QString &name, Action action);
    /// Whether the action is registered. Menus show unregistered actions disabled.
    bool knowsAction(const QString &name) const;
    /// Performs the action; false if it is not registered.
    bool performAction(const QString &name, const KNMenuRepresentedObject &representedObject);

private:
    QHash<QString, Action> m_actions;
};
