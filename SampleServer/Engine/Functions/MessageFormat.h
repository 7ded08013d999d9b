#pragma once

#include "Types/SqlType.h"
#include "Types/Value.h"

#include <string>
#include <vector>

namespace SampleServer {

struct MessageArgument
{
    SqlType type;
    Value value;
};

/// Formats the text of RAISERROR: %s %d %i %u %x %X %o %%, with flags, width and precision. NULL is written
/// as (null). Throws EngineError 2786 if an argument does not fit its placeholder and 2787 for an invalid
/// placeholder.
std::string formatMessage(const std::string &format, const std::vector<MessageArgument> &arguments);

} // namespace SampleServer
