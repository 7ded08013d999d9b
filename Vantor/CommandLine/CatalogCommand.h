#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// "vantor-cli catalog": lists, shows and runs the connector's catalog queries. Returns the exit status.
int runCatalogCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings);
