#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli query": runs a text on a server; writes its results to standard output, everything else to
/// standard error. `arguments` are those after the command's name, `emptySettings` is a new settings object
/// of the connector. Returns the exit status.
int runQueryCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
