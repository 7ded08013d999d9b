#pragma once

#include "Database/VantorDBC.h"
#include "DatabaseTree/KNMenu.h"
#include "Import/KNImportColumnAnalysis.h"
#include "UI/KNConnectorPreferences.h"
#include "UI/KNSharedUIExport.h"
#include "UI/Workspace/KNDocumentState.h"

#include <QtPlugin>

#include <memory>

class ConnectionWindowController;
class KNCreateTableWindowController;
class KNDatabaseTreeContextHelper;
class KNDocumentTab;
class KNWorkspace;
class QWidget;
class SQLRecentConnectionList;

/// The user interface that a connector adds to the host. The module's root object implements it beside
/// KNConnectorPlugin. On the UI thread.
class KNSHAREDUI_EXPORT KNConnectorUserInterface
{
public:
    virtual ~KNConnectorUserInterface();

    /// Creates a dialog that edits a connection, not shown yet and owned by its parent.
    virtual ConnectionWindowController *createConnectionWindowController(QWidget *parent) const = 0;
    /// The user's remembered connections; loaded at the first call.
    virtual SQLRecentConnectionList &recentConnections() const = 0;

    /// Registers the actions of this server kind with the helper of a window's object tree. The helper may
    /// outlive the workspace; the actions then do nothing.
    virtual void addTreeActions(KNDatabaseTreeContextHelper &helper, KNWorkspace &workspace) const = 0;
    /// The items for the object that a query's text names at a position (UTF-16 units), for the editor's
    /// context menu. `details` are the query's settings; `target` performs the actions. None by default.
    virtual KNMenu editorMenu(const QString &text, qsizetype position, const VantorDBC &details,
                              const std::shared_ptr<KNDatabaseTreeContextHelper> &target) const;
    /// Restores a document of a kind unknown to the host; null, the default, if the connector does not know
    /// the kind or cannot restore the document.
    virtual std::unique_ptr<KNDocumentTab> restoreDocument(const KNDocumentState &state,
                                                           KNWorkspace &workspace) const;
    /// Creates a dialog for a new table with a column for each analysed one of a file, not shown yet and
    /// owned by its parent; null, the default, if the connector has none.
    virtual KNCreateTableWindowController *
    createTableWindowController(const QList<KNImportColumnAnalysis> &columns,
                                const std::shared_ptr<const VantorDBC> &settings, QWidget *parent) const;
    /// The connector's preferences; none by default.
    virtual KNConnectorPreferences preferences() const;
};

#define KNConnectorUserInterface_iid "com.quorvex.vantor.connector-windows/2"
Q_DECLARE_INTERFACE(KNConnectorUserInterface, KNConnectorUserInterface_iid)
