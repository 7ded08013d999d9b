#pragma once

#include <QString>

#include <optional>

/// Finds the source table of a query by its text, as far as patterns can: comments and literals are not told
/// from the rest. Pure; any thread.
namespace MSSQLQueryPatterns {

struct Table
{
    QString schema; ///< without brackets; null if the text names none
    QString name;   ///< without brackets
};

bool hasJoin(const QString &query);
/// The text behind the first FROM; null if there is none.
QString firstTable(const QString &query);
/// Splits such a text at its first dot; nothing if it has no word.
std::optional<Table> split(const QString &text);

} // namespace MSSQLQueryPatterns
