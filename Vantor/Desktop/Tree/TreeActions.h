#pragma once

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "UI/Workspace/KNWorkspace.h"

#include <QObject>

/// Performs the actions of the object tree that do not depend on the kind of server: new queries, scripts,
/// refreshing. A connector adds its own actions to the same helper. On the UI thread.
class TreeActions : public QObject
{
    Q_OBJECT

public:
    /// The workspace outlives this object.
    explicit TreeActions(KNWorkspace &workspace, QObject *parent = nullptr);

    /// The helper to set on the root of the tree.
    const std::shared_ptr<KNDatabaseTreeContextHelper> &helper() const { return m_helper; }

Q_SIGNALS:
    void connectionsRequested();
    void disconnectRequested();

private:
    using Use = std::function<void(const QString &text)>;

    void addAction(const char *name, KNDatabaseTreeContextHelper::Action action);
    void addTextAction(const char *name, KNWorkspace::QueryUse use);
    void addQueryAction(const char *name, KNWorkspace::QueryUse use);
    /// Adds an action on the text of a script loader, with the script's report as comments.
    void addScriptAction(const char *name, const Use &use);
    QString selectedName() const;
    void saveScript(const QString &text);

    KNWorkspace &m_workspace;
    const std::shared_ptr<KNDatabaseTreeContextHelper> m_helper;
};
