#pragma once

#include "UI/KNConnectorUserInterface.h"

/// The user interface of the SQL Server connector.
class MSSQLUserInterface : public KNConnectorUserInterface
{
public:
    ConnectionWindowController *createConnectionWindowController(QWidget *parent) const override;
    SQLRecentConnectionList &recentConnections() const override;
    void addTreeActions(KNDatabaseTreeContextHelper &helper, KNWorkspace &workspace) const override;
};
