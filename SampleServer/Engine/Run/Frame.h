#pragma once

#include "Engine/Catalog/Catalog.h"
#include "Engine/Run/Variables.h"

namespace SampleServer {

/// What a running text has of its own: a batch, a dynamic text, a module.
struct Frame
{
    Variables variables;
    TableMap tables;          ///< temporary tables made in it, and table variables under their names with @
    TableMap tableParameters; ///< table variables of the caller under the names of parameters
    Frame *outer = nullptr;
    int depth = 0;                  ///< 0 for the batch
    std::string procedure;          ///< what errors in it name, empty for a batch
    const Module *module = nullptr; ///< null for a batch and for a dynamic text
    Value result;                   ///< what RETURN gave
};

} // namespace SampleServer
