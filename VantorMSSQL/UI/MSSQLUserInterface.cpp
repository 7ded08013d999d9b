#include "UI/MSSQLUserInterface.h"

ConnectionWindowController *MSSQLUserInterface::createConnectionWindowController(QWidget *) const
{
    return nullptr;
}
