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

/// The text of RAISERROR with its placeholders filled: %s %d %i %u %x %X %o %%, with flags, width and
/// precision. NULL is written as (null). Throws EngineError 2786 when an argument does not fit its
/// placeholder and 2787 for an invalid placeholder.
std::string formatMessage(const std::string &format, const std::vector<MessageArgument> &arguments);

} // namespace SampleServer
