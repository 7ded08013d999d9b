#pragma once

#include "Types/ResultSink.h"

#include <exception>
#include <string>
#include <vector>

namespace SampleServer {

/// What an error does to the batch it happens in.
enum class ErrorEffect {
    EndsStatement, ///< the batch goes on with its next statement
    EndsBatch,     ///< the rest of the text does not run: of the batch, the module, the EXEC (...)
    EndsAll,       ///< nothing more runs, up to the batch that the client sent
    RollsBack,     ///< likewise, and an open transaction is rolled back
};

/// An error for the client, thrown inside the engine and turned into a message by the session.
class EngineError : public std::exception
{
public:
    EngineError(std::int32_t number, int severity, int state, std::string text,
                ErrorEffect effect = ErrorEffect::EndsStatement);

    /// The error with another one that is reported after it.
    EngineError followedBy(std::int32_t number, int state, std::string text) const;

    /// Number, severity, state and text; the line is filled in by the statement that failed.
    ServerMessage message;
    ErrorEffect effect;
    /// What the server says after the message, such as "Could not create constraint".
    std::vector<ServerMessage> more;
    /// Whether message.line was set by the thrower and must be kept.
    bool hasLine = false;
    bool isReported = false; ///< the client knows it; what remains is to leave what it ends
    bool isRaised = false;   ///< by RAISERROR, which XACT_ABORT does not concern
    int depth = -1;          ///< how deeply nested the text was that it happened in, once that is known

    const char *what() const noexcept override { return message.text.c_str(); }
};

/// Thrown through the engine when the client asked to stop; ends the batch without a message.
struct BatchCancelled
{
};

} // namespace SampleServer
