#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "QueryLoader/KNQueryLoader.h"
#include "UI/KNSharedUIExport.h"

#include <QCoreApplication>
#include <QList>

#include <memory>

class KNDocumentTab;
class QWidget;

/// The window of one connection, as used by the actions of its object tree and its documents. On the UI
/// thread.
class KNSHAREDUI_EXPORT KNWorkspace
{
    Q_DECLARE_TR_FUNCTIONS(KNWorkspace)

public:
    using Settings = KNDatabaseTreeEntry::Settings;
    using TreeEntry = KNDatabaseTreeEntry::Ptr;
    enum class QueryUse {
        Show,
        Execute, ///< runs the query once it is shown
    };

    KNWorkspace();
    virtual ~KNWorkspace();
    KNWorkspace(const KNWorkspace &) = delete;
    KNWorkspace &operator=(const KNWorkspace &) = delete;

    /// The workspace of the window that shows a widget; null if that window is none.
    static KNWorkspace *of(const QWidget &widget);

    /// A non-owning pointer for callbacks that may outlive the workspace.
    std::weak_ptr<KNWorkspace> weakPointer() const { return m_self; }

    /// The settings of the window's connection.
    virtual const Settings &databaseConnectionDetails() const = 0;

    /// Opens a query with this text in front; null for an empty one. `details` contains the initial database.
    /// `name` is the query's title, such as the name of a table; null for a numbered one.
    virtual void openQueryText(const QString &text, const Settings &details, QueryUse use,
                               const QString &name) = 0;
    /// Opens a query with the loader's text when it is loaded, immediately for a loader with a fixed text.
    /// Shows a text that is incomplete or has notices without running it. Shows an error if there is no text.
    void openQuery(const KNQueryLoaderPtr &loader, const Settings &details, QueryUse use,
                   const QString &name = {});
    /// Shows the reason why a loader has no text.
    void showLoadFailure(const KNQueryReport &report);

    /// Adds a document and shows it in front.
    virtual void openDocument(std::unique_ptr<KNDocumentTab> document) = 0;
    /// The open documents in the order of their tabs.
    virtual QList<KNDocumentTab *> documents() const = 0;
    /// Shows one of documents() in front.
    virtual void showDocument(KNDocumentTab *document) = 0;

    /// Opens a window on another server or with other settings, of which it takes a copy.
    virtual void openConnection(const VantorDBC &details) = 0;
    /// The parent of sheets and alerts.
    virtual QWidget *sheetParent() = 0;

    /// The selected entry of the tree; null if none.
    virtual TreeEntry selectedTreeEntry() const = 0;
    /// The settings of the selected entry, or those of the window's connection.
    Settings selectedSettings() const;
    /// Reloads the entry's children, or those of its parent if it has none.
    virtual void refreshTreeEntry(const TreeEntry &entry) = 0;
    virtual void deselectTree() = 0;

    /// Shows a text for some seconds, where it does not disturb.
    virtual void showNotice(const QString &text) = 0;
    /// Reports a success that the user may no longer be waiting for, as a desktop notification.
    virtual void notifyUser(const QString &title, const QString &text) = 0;

private:
    std::shared_ptr<KNWorkspace> m_self; ///< has no deleter; expires with this object
};
