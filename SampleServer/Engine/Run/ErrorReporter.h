#pragma once

#include "Engine/EngineError.h"
#include "Engine/Run/SessionContext.h"

#include <vector>

namespace SampleServer {

/// Decides what an error ends, and sends those to the client that no TRY block is going to handle.
class ErrorReporter
{
public:
    explicit ErrorReporter(SessionContext &session)
        : m_session(session)
    {
    }

    /// A TRY block that runs, for as long as this lives.
    class TryBlock
    {
    public:
        /// `depth` is that of its frame; -1 for a function, whose errors are its statement's.
        TryBlock(ErrorReporter &errors, int depth)
            : m_tries(errors.m_tries)
        {
            m_tries.push_back(depth);
        }
        ~TryBlock() { m_tries.pop_back(); }
        TryBlock(const TryBlock &) = delete;
        TryBlock &operator=(const TryBlock &) = delete;

    private:
        std::vector<int> &m_tries;
    };

    /// Writes down where an error happened, if that is not known yet.
    void locate(EngineError &error, int line) const;
    /// Sends an error to the client, unless a CATCH block is going to handle it; `changesRows` when it ended
    /// a statement that changes rows.
    void report(EngineError &error, int line, bool changesRows = false);
    void reportSyntax(EngineError &error);
    void reportLackOfMemory();
    /// Rolls a transaction back that can only be rolled back: it does not outlive the batch.
    void endDoomedTransaction();

    bool rollsBack(const EngineError &error) const;
    bool endsBatch(const EngineError &error) const;
    bool endsAll(const EngineError &error) const;
    /// Whether a TRY block in a frame of that depth handles the error.
    bool catches(int tryDepth, const EngineError &error) const;
    bool isCaught(const EngineError &error) const;
    bool isInTry() const { return !m_tries.empty(); }

private:
    SessionContext &m_session;
    std::vector<int> m_tries; ///< depths of the frames of the TRY blocks around the current statement
};

} // namespace SampleServer
