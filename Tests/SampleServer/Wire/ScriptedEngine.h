#pragma once

#include "Types/ResultSink.h"

#include <functional>
#include <string>

/// Stands in for the engine behind the wire: a batch's text is the name of a script that a test has written,
/// and the databases are master and tempdb. A batch of any other text reports error 50001 with the text as
/// its message.
namespace ScriptedEngine {

using Script = std::function<void(SampleServer::ResultSink &sink)>;

/// Replaces the script of that name. Thread-safe.
void define(const std::string &name, Script script);

/// Sends one result of a column for each type, all nullable and named "c1", "c2", ...
void sendResult(SampleServer::ResultSink &sink, const std::vector<SampleServer::SqlType> &types,
                const std::vector<std::vector<SampleServer::Value>> &rows);

} // namespace ScriptedEngine
