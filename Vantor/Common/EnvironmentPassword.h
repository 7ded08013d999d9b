#pragma once

#include <QString>

#include <optional>

/// Returns the password in the environment variable VANTOR_PASSWORD, and removes the variable: child
/// processes do not inherit it, and /proc/PID/environ no longer shows it. nullopt if the variable is not set,
/// also on the second call. Call it before other threads or child processes start.
std::optional<QString> TakeEnvironmentPassword();
