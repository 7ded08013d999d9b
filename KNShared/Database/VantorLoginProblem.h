#pragma once

#include "Foundation/KNError.h"

/// Why a connection could not be opened, as far as callers act on it.
enum class VantorLoginProblem {
    Unknown,
    LoginRefused,    ///< wrong password, locked account, ...: each further attempt counts against the account
    DatabaseRefused, ///< the login is good, the database is not there or not allowed
    ServerUnreachable,
    Cancelled,
};

/// The problem that a connector has stored in an error; Unknown when it has stored none. Any thread.
KNSHARED_EXPORT VantorLoginProblem VantorLoginProblemOf(const KNError &error);
/// The user info of an error with this problem.
KNSHARED_EXPORT QVariantMap VantorLoginProblemInfo(VantorLoginProblem problem);
