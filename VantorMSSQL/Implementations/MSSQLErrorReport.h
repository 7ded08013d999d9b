#pragma once

#include "Foundation/KNError.h"

#include <QVariantMap>

/// How errors of servers reach the log. Any thread.
class MSSQLErrorReport
{
public:
    /// Logs an error, unless it is a login failure that users are expected to run into.
    static void reportError(const KNError &error, const QVariantMap &details);
};
