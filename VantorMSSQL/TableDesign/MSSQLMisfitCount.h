#pragma once

#include "Database/VantorDBC.h"

#include <QCoreApplication>

#include <optional>

/// Counts the rows whose values a new type would not hold.
class MSSQLMisfitCount
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLMisfitCount)

public:
    /// Runs the query, which answers one number. Blocks for at most three seconds: any thread except the UI
    /// thread. nullopt if the number is not known by then, or if the query is null or fails.
    static std::optional<qint64> count(const std::shared_ptr<const VantorDBC> &settings,
                                       const QString &query);
    /// What the user is told before the type is changed.
    static QString sentence(std::optional<qint64> rows);
};
