#pragma once

#include "CommandLine/InterruptWatcher.h"
#include "Database/KNScriptRun.h"

/// Runs the batches of a text on a separate thread while the calling thread writes arriving results to
/// standard output, in a format of ResultFormat, and messages and errors to standard error. Returns the exit
/// status.
int runText(VantorDatabaseClient &client, const QString &text, const QString &format, KNOnError onError,
            InterruptWatcher &interrupts);
