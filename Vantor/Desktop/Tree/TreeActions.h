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
    using Use = std::function<void(const QString &text)>;

    void addAction(const char *name, KNDatabaseTreeContextHelper::Action action);
    /// An action that works on a text, or on one that a script loader makes; failures are told.
    void addTextAction(const char *name, std::function<void(const QString &, const Settings &)> action);
    void addScriptAction(const char *name, std::function<void(const QString &, const Settings &)> action);
    void load(const KNQueryLoaderPtr &loader, const Settings &details, Use use);
    Settings selectedSettings() const;
    void saveScript(const QString &text);

    KNDatabaseTreeViewController &m_tree;
    const std::shared_ptr<KNDatabaseTreeContextHelper> m_helper;
};
