#pragma once

#include "Engine/Catalog/Module.h"
#include "Engine/Edition.h"

#include <span>
#include <string_view>
#include <vector>

namespace SampleServer {

/// Returns a view or inline function that every database of an edition has: sys.*, INFORMATION_SCHEMA.* and
/// the tables of older versions. Their ids are negative. Null if there is none with this name.
ModulePtr findSystemView(Edition edition, std::string_view schema, std::string_view name);
/// Returns all system views.
const std::vector<ModulePtr> &systemViews(Edition edition);
/// Whether statements may name a view; otherwise only other catalog views may. `inSchema` if they name it
/// with the schema sys.
bool showsSystemView(Edition edition, const Module &view, bool inSchema);

/// View definitions separated by GO lines.
struct SystemViewScript
{
    std::string_view name;
    std::string_view text;
};

/// The scripts of Catalog/Views; each may use the views of earlier scripts.
std::span<const SystemViewScript> systemViewScripts();

} // namespace SampleServer
