#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace SampleServer {

enum class IsolationLevel { ReadUncommitted, ReadCommitted, RepeatableRead, Serializable };

/// The SET options of a session that executors use; those that expressions need live in
/// EvaluationContext.
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
    std::optional<std::chrono::milliseconds> lockTimeout; ///< empty: waits for ever
    IsolationLevel isolation = IsolationLevel::ReadCommitted;
    std::optional<std::int64_t> identityInsertTable; ///< id of the table that SET IDENTITY_INSERT is on for
};

} // namespace SampleServer
