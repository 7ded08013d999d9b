#pragma once

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "QueryLoader/KNQueryLoader.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"

#include <QObject>

/// Carries out those actions of the object tree that every kind of server has: new query tabs, scripts,
/// refreshing. A connector adds its own to the same helper.
class TreeActions : public QObject
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;

    /// The actions work on the tree's selected entry.
    explicit TreeActions(KNDatabaseTreeViewController &tree);

    /// What the root of the tree is to know.
    const std::shared_ptr<KNDatabaseTreeContextHelper> &helper() const { return m_helper; }

Q_SIGNALS:
    void queryTabRequested(const QString &text, const TreeActions::Settings &details, bool execute);
    void connectionsRequested();
    void disconnectRequested();

private:
    using Use = std::function<void(const QString &text, bool isReported)>;
    using ScriptAction = std::function<void(const QString &text, const Settings &details)>;

    void addAction(const char *name, KNDatabaseTreeContextHelper::Action action);
    void addTextAction(const char *name, const ScriptAction &action);
    /// An action on the text that a script loader makes, with what it reports as comments. A loader without a
    /// text leads to an alert. `whenReported`, when given, takes the place of `action` for a script that is
    /// incomplete or acts on another object: such a script is not run at once.
    void addScriptAction(const char *name, const ScriptAction &action, const ScriptAction &whenReported = {});
    void load(const KNQueryLoaderPtr &loader, const Settings &details, Use use);
    Settings selectedSettings() const;
    void saveScript(const QString &text);

    KNDatabaseTreeViewController &m_tree;
    const std::shared_ptr<KNDatabaseTreeContextHelper> m_helper;
};
