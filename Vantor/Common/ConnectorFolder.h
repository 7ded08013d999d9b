#pragma once

#include <QString>
#include <QStringList>

class KNConnectorPlugin;

/// Finds the programs' connectors: in the folder "connectors" beside the program, as in a build tree, or in
/// the installation folder.
namespace ConnectorFolder {

/// Loads the first usable connector; null if there is none. `problems` receives texts for the user about the
/// others.
KNConnectorPlugin *loadConnector(QStringList *problems);

} // namespace ConnectorFolder
