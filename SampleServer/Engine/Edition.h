#pragma once

#include <string>
#include <string_view>

namespace SampleServer {

/// The server that a sample server answers as. What an older one has, the later ones have as well.
enum class Edition { Sql2000, Sql2008, Sql2022, Azure };

/// What @@VERSION answers.
std::string versionBannerOf(Edition edition);

/// Whether the edition has a built-in function; the name is in upper case. True for names that are none.
bool hasFunction(Edition edition, std::string_view name);
/// Likewise for a system type.
bool hasType(Edition edition, std::string_view name);

} // namespace SampleServer
