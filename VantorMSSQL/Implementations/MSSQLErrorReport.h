#pragma once

#include "Foundation/KNError.h"

#include <QVariantMap>

/// Writes server errors to the log. Any thread.
class MSSQLErrorReport
{
public:
    /// Logs an error, except for expected login failures; returns whether it did.
    static bool reportError(const KNError &error, const QVariantMap &details);
};
