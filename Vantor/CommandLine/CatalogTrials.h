#pragma once

#include "CommandLine/InterruptWatcher.h"
#include "Database/VantorDatabaseClient.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

/// Runs every read-only query on the connection, filled from the first of at most 50 objects for which it
/// returns rows. Prints one line for each: the number of rows and the time, that there is no object for it,
/// or its error. Returns the exit status: ExitSqlError if any query failed.
int runCatalogTrials(VantorDatabaseClient &client, const KNSystemDatabaseQueryHelper &queries,
                     InterruptWatcher &interrupts);
