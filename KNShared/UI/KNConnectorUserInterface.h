#pragma once

#include "Database/VantorDBC.h"
#include "UI/KNSharedUIExport.h"

#include <QtPlugin>

#include <functional>

class ConnectionWindowController;
class KNDatabaseTreeContextHelper;
class KNDatabaseTreeViewController;
class QWidget;
class SQLRecentConnectionList;

/// The windows that a connector brings with it. The module's root object implements it beside
/// KNConnectorPlugin. On the UI thread.
class KNSHAREDUI_EXPORT KNConnectorUserInterface
{
public:
    virtual ~KNConnectorUserInterface();

    /// A new dialog that edits a connection, not shown yet. It belongs to its parent.
    virtual ConnectionWindowController *createConnectionWindowController(QWidget *parent) const = 0;
    /// The connections that the user has made before; loaded when asked for first.
    virtual SQLRecentConnectionList &recentConnections() const = 0;

    /// Opens a window of its own on a server.
    using OpenConnection = std::function<void(const VantorDBC &details)>;
    /// Adds the actions of this kind of server to the helper of a tree. They do nothing once the tree is
    /// gone.
    virtual void addTreeActions(KNDatabaseTreeContextHelper &helper, KNDatabaseTreeViewController &tree,
                                const OpenConnection &openConnection) const = 0;
};

#define KNConnectorUserInterface_iid "com.quorvex.vantor.connector-windows/1"
Q_DECLARE_INTERFACE(KNConnectorUserInterface, KNConnectorUserInterface_iid)
