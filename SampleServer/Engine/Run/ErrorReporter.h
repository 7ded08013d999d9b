#pragma once

#include "Engine/EngineError.h"
#include "Engine/Run/SessionContext.h"

#include <vector>

namespace SampleServer {

/// Determines the effect of an error, and sends errors to the client that no TRY block handles.
class ErrorReporter
{
public:
    explicit ErrorReporter(SessionContext &session)
        : m_session(session)
    {
    }

    /// An active TRY block as long as this object exists.
    class TryBlock
    {
    public:
        /// `depth` is the depth of its frame; -1 for a function, whose errors belong to the calling
        /// statement.
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

    /// Sets the location of an error if it is not known yet.
    void locate(EngineError &error, int line) const;
    /// Sends an error to the client unless a CATCH block handles it; `changesRows` if it ended a statement
    /// that changes rows.
    void report(EngineError &error, int line, bool changesRows = false);
    void reportSyntax(EngineError &error);
    void reportLackOfMemory();
    /// Rolls back a doomed transaction at the end of its batch.
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
