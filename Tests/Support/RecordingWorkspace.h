#pragma once

#include "UI/Workspace/KNDocumentTab.h"
#include "UI/Workspace/KNWorkspace.h"

#include <vector>

/// A workspace without a window that records what it is asked for. The test provides the tree's selection.
class RecordingWorkspace : public KNWorkspace
{
public:
    struct Query
    {
        QString text;
        Settings details;
        QueryUse use;
        QString name;
    };

    /// Takes a copy of the settings.
    explicit RecordingWorkspace(const VantorDBC &details)
        : m_details(details.copy())
    {
    }
    ~RecordingWorkspace() override { qDeleteAll(opened); }

    const Settings &databaseConnectionDetails() const override { return m_details; }
    void openQueryText(const QString &text, const Settings &details, QueryUse use,
                       const QString &name) override
    {
        queries.push_back({text, details, use, name});
    }
    void openDocument(std::unique_ptr<KNDocumentTab> document) override { opened.append(document.release()); }
    QList<KNDocumentTab *> documents() const override { return opened; }
    void showDocument(KNDocumentTab *document) override { shown = document; }
    void openConnection(const VantorDBC &details) override { connections.push_back(details.copy()); }
    QWidget *sheetParent() override { return &window; }
    TreeEntry selectedTreeEntry() const override { return selected; }
    void refreshTreeEntry(const TreeEntry &entry) override { refreshed.push_back(entry); }
    void deselectTree() override { selected.reset(); }
    void showNotice(const QString &text) override { notices.append(text); }
    void notifyUser(const QString &title, const QString &text) override
    {
        notifications.push_back({title, text});
    }

    QWidget window;
    TreeEntry selected;
    std::vector<Query> queries;
    QList<KNDocumentTab *> opened;
    KNDocumentTab *shown = nullptr;
    std::vector<VantorDBCPtr> connections;
    std::vector<TreeEntry> refreshed;
    QStringList notices;
    std::vector<QStringList> notifications; ///< title and text

private:
    const Settings m_details;
};
