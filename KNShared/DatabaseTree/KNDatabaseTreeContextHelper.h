#pragma once

#include "DatabaseTree/KNMenuItem.h"
#include "KNSharedExport.h"

#include <QHash>

#include <functional>

/// Carries out the actions of the tree's menus by their names. Used on the UI thread.
class KNSHARED_EXPORT KNDatabaseTreeContextHelper
{
public:
    using Action = std::function<void(const KNMenuRepresentedObject &)>;

    virtual ~KNDatabaseTreeContextHelper();

    /// From now on the helper knows this action; another one of the same name is replaced.
    void addAction(const QString &name, Action action);
    /// Menus show actions that are not known disabled.
    bool knowsAction(const QString &name) const;
    /// Carries the action out; false when it is not known.
    bool performAction(const QString &name, const KNMenuRepresentedObject &representedObject);

private:
    QHash<QString, Action> m_actions;
};
