#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli design": prints or runs the script that changes a column of a table. `arguments` are those
/// after the command's name, `emptySettings` is a new settings object of the connector. Returns the exit
/// status.
int runDesignCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
