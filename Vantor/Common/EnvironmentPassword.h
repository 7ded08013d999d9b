#pragma once

#include <QString>

#include <optional>

/// Returns the password in the environment variable VANTOR_PASSWORD, and removes it: child processes do not
/// inherit it, and /proc/PID/environ no longer shows it. Empty when the variable is not set, also at the
/// second call. Call it before other threads or child processes start.
std::optional<QString> TakeEnvironmentPassword();
