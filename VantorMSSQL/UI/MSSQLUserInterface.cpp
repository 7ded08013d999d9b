#include "UI/MSSQLUserInterface.h"

#include "Implementations/MSSQLRecentConnection.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionWindowController.h"

ConnectionWindowController *MSSQLUserInterface::createConnectionWindowController(QWidget *parent) const
{
    return new MSSQLConnectionWindowController(parent);
}

SQLRecentConnectionList &MSSQLUserInterface::recentConnections() const
{
    return MSSQLRecentConnection::list();
}

void MSSQLUserInterface::addTreeActions(KNDatabaseTreeContextHelper &helper, KNWorkspace &workspace) const
{
    MSSQLDatabaseTreeContextHelper(helper, workspace).addActions();
}
