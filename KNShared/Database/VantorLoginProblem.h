#pragma once

#include "Foundation/KNError.h"

/// Why a connection could not be opened, in the cases that callers handle differently.
enum class VantorLoginProblem {
    Unknown,
    LoginRefused,    ///< wrong password, locked account, ...: each further attempt counts against the account
    DatabaseRefused, ///< the login succeeded, but the database does not exist or is not accessible
    ServerUnreachable,
    Cancelled,
};

/// Returns the problem that a connector stored in an error; Unknown if there is none. Any thread.
KNSHARED_EXPORT VantorLoginProblem VantorLoginProblemOf(const KNError &error);
/// Returns the user info for an error with this problem.
KNSHARED_EXPORT QVariantMap VantorLoginProblemInfo(VantorLoginProblem problem);
