#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli export": writes the script of a database. Returns the exit status.
int runExportCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
