#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli format": prints a script with new line breaks and indentation. `arguments` are those after the
/// command's name, `emptySettings` is a new settings object of the connector. Returns the exit status.
int runFormatCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
