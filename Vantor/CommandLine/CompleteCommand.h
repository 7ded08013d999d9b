#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli complete": prints what the editor would offer at a place of a file, best entry first.
/// `arguments` are those after the command's name, `emptySettings` is a new settings object of the connector.
/// Returns the exit status.
int runCompleteCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
