#include "UI/MSSQLUserInterface.h"

#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionWindowController.h"

ConnectionWindowController *MSSQLUserInterface::createConnectionWindowController(QWidget *parent) const
{
    return new MSSQLConnectionWindowController(parent);
}

SQLRecentConnectionList &MSSQLUserInterface::recentConnections() const
{
    return MSSQLRecentConnection::list();
}
