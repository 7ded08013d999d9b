#pragma once

/// Optional branches and details of the tree. All are off by default, and take effect
/// when the tree is loaded.
namespace MSSQLTreePreferences {

inline constexpr auto ShowSystemDatabases = "MSSQLShowSystemDatabases";
inline constexpr auto ShowSecurity = "MSSQLShowSecurity"; ///< logins, users and roles
inline constexpr auto ShowRowCounts = "MSSQLShowRowCounts";

bool isOn(const char *key);

} // namespace MSSQLTreePreferences
