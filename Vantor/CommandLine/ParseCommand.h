#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli parse": has a server check the syntax of a file, without running it. `arguments` are those
/// after the command's name, `emptySettings` is a new settings object of the connector. Returns the exit
/// status.
int runParseCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
