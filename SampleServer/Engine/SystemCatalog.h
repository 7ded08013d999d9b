#pragma once

#include "Engine/Module.h"

#include <string_view>
#include <vector>

namespace SampleServer {

/// The views that every database has: sys.*, INFORMATION_SCHEMA.* and the tables of older versions, and a few
/// inline functions. Their ids
/// are negative. Null when there is none of that name.
ModulePtr findSystemView(std::string_view schema, std::string_view name);
/// All of them but those that only others are written over.
const std::vector<ModulePtr> &systemViews();

/// The text that defines views, one after the other with GO lines between them.
std::string_view objectViewsText();
std::string_view serverViewsText();
std::string_view informationSchemaText();
std::string_view compatibilityViewsText();

} // namespace SampleServer
