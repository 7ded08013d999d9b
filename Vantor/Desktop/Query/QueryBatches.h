#pragma once

#include "Desktop/Query/QueryRun.h"

/// The batches that a request runs, with ranges and lines in its whole text. Any thread.
QList<KNQueryDetails> batchesOf(const QueryRequest &request, const VantorDBC &details);

/// The text that a request runs, for the history.
QString textOf(const QueryRequest &request);
