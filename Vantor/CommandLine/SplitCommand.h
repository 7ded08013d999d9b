#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli split FILE": prints the batches of a file as JSON. Returns the exit status.
int runSplitCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
