#pragma once

#include "Engine/Catalog/Module.h"
#include "Engine/Functions/EvaluationContext.h"
#include "Engine/Storage/RowProvider.h"

#include <memory>

namespace SampleServer {

/// Returns the rows of a multi-statement function for SQLite. `context` must outlive the result.
std::shared_ptr<const RowProvider> rowsOfFunction(const EvaluationContext &context, ModulePtr module);

} // namespace SampleServer
