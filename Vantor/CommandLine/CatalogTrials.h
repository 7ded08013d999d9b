#pragma once

#include "CommandLine/InterruptWatcher.h"
#include "Database/VantorDatabaseClient.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

/// Runs every query that only reads on the connection, filled from the first object that suits it, and prints
/// a line for each: how many rows it gave and how long it took, that there is no object for it, or its error.
/// Returns the exit status, which tells whether any failed.
int runCatalogTrials(VantorDatabaseClient &client, const KNSystemDatabaseQueryHelper &queries,
                     InterruptWatcher &interrupts);
