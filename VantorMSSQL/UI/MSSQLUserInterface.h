#pragma once

#include "UI/KNConnectorUserInterface.h"

/// The windows of the SQL Server connector.
class MSSQLUserInterface : public KNConnectorUserInterface
{
public:
    ConnectionWindowController *createConnectionWindowController(QWidget *parent) const override;
    SQLRecentConnectionList &recentConnections() const override;
    void addTreeActions(KNDatabaseTreeContextHelper &helper, KNDatabaseTreeViewController &tree,
                        const OpenConnection &openConnection) const override;
};
