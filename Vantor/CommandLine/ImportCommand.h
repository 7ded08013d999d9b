#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli import": imports a file into a table. `arguments` are those after the command's name,
/// `emptySettings` is a new settings object of the connector. Returns the exit status.
int runImportCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
