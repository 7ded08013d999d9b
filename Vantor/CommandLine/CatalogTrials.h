#pragma once

#include "CommandLine/InterruptWatcher.h"
#include "Database/VantorDatabaseClient.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

/// Runs every query that only reads on the connection, filled from the first of at most 50 objects for which
/// it returns rows, and prints a line for each: how many rows and how long it took, that there is no object
/// for it, or its error. Returns the exit status: ExitSqlError when any failed.
int runCatalogTrials(VantorDatabaseClient &client, const KNSystemDatabaseQueryHelper &queries,
                     InterruptWatcher &interrupts);
