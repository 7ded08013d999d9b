#pragma once

#include "Engine/Catalog/Module.h"
#include "Engine/Edition.h"

#include <string_view>
#include <vector>

namespace SampleServer {

/// The views that every database of an edition has: sys.*, INFORMATION_SCHEMA.* and the tables of older
/// versions, and a few inline functions. Their ids are negative. Null when there is none of that name.
ModulePtr findSystemView(Edition edition, std::string_view schema, std::string_view name);
/// All of them.
const std::vector<ModulePtr> &systemViews(Edition edition);
/// Whether statements may name a view, or only other views of the catalog; `inSchema` when they name it with
/// the schema sys.
bool showsSystemView(Edition edition, const Module &view, bool inSchema);

/// The text that defines views, one after the other with GO lines between them.
std::string_view objectViewsText();
std::string_view storageViewsText();
std::string_view serverViewsText();
std::string_view informationSchemaText();
std::string_view compatibilityViewsText();

} // namespace SampleServer
