#pragma once

#include <string>
#include <string_view>

namespace SampleServer {

/// The server version that a sample server emulates. Later editions include the features of earlier ones.
enum class Edition { Sql2000, Sql2008, Sql2022, Azure };

/// The value of @@VERSION.
std::string versionBannerOf(Edition edition);

/// Whether the edition has a built-in function; the name is in upper case. True for names that are not
/// built-in functions.
bool hasFunction(Edition edition, std::string_view name);
/// The same for a system type.
bool hasType(Edition edition, std::string_view name);

} // namespace SampleServer
