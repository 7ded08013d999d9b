#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli query": runs a text on a server and writes its results to standard output, everything else to
/// standard error. `arguments` are those behind the command's name, `emptySettings` a new record of the
/// connector. Returns the exit status.
int runQueryCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
