#pragma once

#include "Engine/Catalog/Catalog.h"
#include "Engine/Run/Variables.h"

namespace SampleServer {

/// The local state of a running text: a batch, a dynamic text, a module.
struct Frame
{
    Variables variables;
    TableMap tables; ///< temporary tables created in it, and table variables under their names with @
    TableMap tableParameters; ///< table variables of the caller under the parameter names
    Frame *outer = nullptr;
    int depth = 0;                  ///< 0 for the batch
    std::string procedure;          ///< shown in its errors; empty for a batch
    const Module *module = nullptr; ///< null for a batch and for a dynamic text
    Value result;                   ///< the value of RETURN
};

} // namespace SampleServer
