#pragma once

#include "Database/VantorDBC.h"
#include "UI/KNSharedUIExport.h"

#include <QtPlugin>

class ConnectionWindowController;
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
};

#define KNConnectorUserInterface_iid "com.quorvex.vantor.connector-windows/1"
Q_DECLARE_INTERFACE(KNConnectorUserInterface, KNConnectorUserInterface_iid)
