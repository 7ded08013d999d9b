#include "Engine/EngineError.h"

namespace SampleServer {

EngineError::EngineError(std::int32_t number, int severity, int state, std::string text,
                         ErrorEffect errorEffect)
    : effect(errorEffect)
{
    message.number = number;
    message.severity = static_cast<std::uint8_t>(severity);
    message.state = static_cast<std::uint8_t>(state);
    message.text = std::move(text);
}

EngineError EngineError::followedBy(std::int32_t number, int state, std::string text) const
{
    EngineError error = *this;
    error.more.push_back(EngineError(number, 16, state, std::move(text)).message);
    return error;
}

} // namespace SampleServer
