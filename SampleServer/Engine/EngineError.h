#pragma once

#include "Types/ResultSink.h"

#include <exception>
#include <string>
#include <vector>

namespace SampleServer {

/// The effect of an error on its batch.
enum class ErrorEffect {
    EndsStatement, ///< the batch continues with its next statement
    EndsBatch,     ///< skips the rest of the text: of the batch, the module, the EXEC (...)
    EndsAll,       ///< skips everything up to the end of the client's batch
    RollsBack,     ///< the same, and rolls back an open transaction
};

/// An error for the client, thrown inside the engine and turned into a message by the session.
class EngineError : public std::exception
{
public:
    EngineError(std::int32_t number, int severity, int state, std::string text,
                ErrorEffect effect = ErrorEffect::EndsStatement);

    /// Returns the error followed by another one.
    EngineError followedBy(std::int32_t number, int state, std::string text) const;

    /// Number, severity, state and text; the failed statement adds the line.
    ServerMessage message;
    ErrorEffect effect;
    /// Further messages to send after it, such as "Could not create constraint".
    std::vector<ServerMessage> more;
    /// Whether message.line was set by the thrower and must be kept.
    bool hasLine = false;
    bool isReported = false; ///< already sent to the client; only its effect remains
    bool isRaised = false;   ///< by RAISERROR, which XACT_ABORT does not affect
    int depth = -1;          ///< nesting depth of the failed text, once known

    const char *what() const noexcept override { return message.text.c_str(); }
};

/// Thrown when the client has cancelled; ends the batch without a message.
struct BatchCancelled
{
};

} // namespace SampleServer
