#pragma once

/// Optional branches and details of the tree. All are off by default, and take effect
/// when the tree is loaded.
namespace MSSQLTreePreferences {

inline constexpr auto ShowSystemDatabases = "MSSQLShowSystemDatabases";
inline constexpr auto ShowSecurity = "MSSQLShowSecurity"; ///< logins, users and roles
inline constexpr auto ShowRowCounts = "MSSQLShowRowCounts";

inline constexpr auto AgentEnabled = "MSSQLAgentEnabled"; ///< the branch of the SQL Server Agent

bool isOn(const char *key);
void setOn(const char *key, bool isOn);

} // namespace MSSQLTreePreferences
