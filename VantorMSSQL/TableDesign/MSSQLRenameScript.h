#pragma once

#include <QString>

struct MSSQLDesignedTable;

/// The statements that rename a table or a part of one, for every version of SQL Server. Names are as stored,
/// without quotes. Pure, any thread.
namespace MSSQLRenameScript {

QString table(const MSSQLDesignedTable &table, const QString &newName);
QString column(const MSSQLDesignedTable &table, const QString &columnName, const QString &newName);
/// Also the index of a key, whose constraint is renamed with it.
QString index(const MSSQLDesignedTable &table, const QString &indexName, const QString &newName);
/// A key or another constraint, which the server finds by the schema of its table.
QString constraint(const MSSQLDesignedTable &table, const QString &constraintName, const QString &newName);

/// The entered name of a column, an index or a constraint without the white space around it. Null when a
/// server does not take it: when it is empty, too long or has control characters.
QString acceptedName(const QString &entered);

/// Of every name, in UTF-16 units.
constexpr int LongestName = 128;

} // namespace MSSQLRenameScript
