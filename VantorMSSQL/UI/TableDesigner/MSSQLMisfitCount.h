#pragma once

#include "Database/VantorDBC.h"

#include <QObject>

#include <functional>
#include <optional>

/// Counts the rows whose values a new type would not hold. On the UI thread.
namespace MSSQLMisfitCount {

/// Runs the query, which answers one number, in the background for at most three seconds. `counted` is called
/// once, with nothing if the number is not known by then or there is no query, and not after `owner` is
/// destroyed.
void count(const std::shared_ptr<const VantorDBC> &settings, const QString &query, QObject *owner,
           std::function<void(std::optional<qint64> rows)> counted);

} // namespace MSSQLMisfitCount
