#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli tree": prints the objects of a server as a tree. Returns the exit status.
int runTreeCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
/// "vantor-cli menu": prints the menu of one entry of that tree. Returns the exit status.
int runMenuCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
