#pragma once

#include "Engine/Catalog/Module.h"
#include "Engine/Edition.h"

#include <span>
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

/// Definitions of views, with GO lines between them.
struct SystemViewScript
{
    std::string_view name;
    std::string_view text;
};

/// The scripts of Catalog/Views, each of which may use the views of those before.
std::span<const SystemViewScript> systemViewScripts();

} // namespace SampleServer
