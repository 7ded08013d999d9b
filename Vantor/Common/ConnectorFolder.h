#pragma once

#include <QString>
#include <QStringList>

class KNConnectorPlugin;

/// Where the programs find their connectors: in "connectors" beside the program, as a build lays them, or
/// where they are installed.
namespace ConnectorFolder {

/// The first connector that can be used; null when there is none. `problems` tells of the others, for the
/// user.
KNConnectorPlugin *loadConnector(QStringList *problems);

} // namespace ConnectorFolder
