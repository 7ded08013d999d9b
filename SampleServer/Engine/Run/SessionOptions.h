#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace SampleServer {

enum class IsolationLevel { ReadUncommitted, ReadCommitted, RepeatableRead, Serializable };

/// SET options of a session used by executors; those used by expressions are in EvaluationContext.
struct SessionOptions
{
    bool quotedIdentifiers = true;
    bool noCount = false;
    bool abortTransactions = false; ///< XACT_ABORT
    bool implicitTransactions = false;
    bool formatOnly = false; ///< FMTONLY: results without rows, nothing changes
    bool parseOnly = false;
    bool noExecute = false;
    std::int64_t rowLimit = 0;                            ///< ROWCOUNT, 0 for all
    std::optional<std::chrono::milliseconds> lockTimeout; ///< empty: waits forever
    IsolationLevel isolation = IsolationLevel::ReadCommitted;
    std::optional<std::int64_t> identityInsertTable; ///< table id of SET IDENTITY_INSERT
};

} // namespace SampleServer
