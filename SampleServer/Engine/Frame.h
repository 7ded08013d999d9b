#pragma once

#include "Engine/Catalog.h"
#include "Engine/Variables.h"

namespace SampleServer {

/// What a running text has of its own: a batch, a dynamic text, a module.
struct Frame
{
    Variables variables;
    TableMap tables; ///< temporary tables made in it, and table variables under their names with @
    Frame *outer = nullptr;
    int depth = 0;           ///< 0 for the batch
    std::string procedure;   ///< what errors in it name, empty for a batch
    std::int32_t status = 0; ///< what RETURN gave
};

} // namespace SampleServer
