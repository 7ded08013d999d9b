#pragma once

#include "Foundation/KNValue.h"

#include <QStringList>

/// Names, values and types as T-SQL text. All operations are pure and may be called from any thread.
class MSSQLQuoting
{
public:
    /// Returns a name, or schema.name, in brackets where required. Null for a null text; a text in brackets
    /// is unchanged. A "]" inside a name is not doubled.
    static QString escapeTableNameIfRequired(const QString &name);
    /// Returns a name, or names joined by dots, without brackets. Null for a null text.
    static QString unescapeTableNameIfRequired(const QString &name);
    /// schema.table, each in brackets where required; the table alone if the schema is null or empty.
    static QString escapeSchemaAndTable(const QString &schema, const QString &table);
    /// The table with this path (name, or schema and name), quoted as by escapeSchemaAndTable().
    static QString escapeTablePaths(const QStringList &path);
    /// A literal for row editing: text without N prefix, lower-case hexadecimal, NULL for null, other values
    /// as displayed. A server drops a backslash before a line end, and the line end; literal() keeps both.
    static QString escapeColumnValue(const KNValue &value);
    /// A literal for generated scripts: as escapeColumnValue(), but with upper-case hexadecimal, dates in
    /// quotes to the second, and the text "null" in any case as NULL.
    static QString databaseProviderEscape(const KNValue &value);
    /// One name, not a path, in brackets where required; a "]" in it is doubled.
    static QString quotedName(const QString &name);
    /// A literal that a server reads as exactly this value, whatever the session's language and the
    /// database's code page are: as escapeColumnValue(), but text outside ASCII has the prefix N, a backslash
    /// before a line end is kept, dates are quoted in ISO 8601 format, and floating-point numbers have an
    /// exponent.
    static QString literal(const KNValue &value);
    /// N'text', a constant with exactly this text.
    static QString unicodeLiteral(const QString &text);

    /// The display text of a catalog's column type: "nvarchar(50)". `maxLength` is in bytes, -1 for (max),
    /// null for none. Precision and scale are not shown.
    static QString displayForColumnType(const QString &typeName, const KNValue &maxLength,
                                        const KNValue &precision, const KNValue &scale);
};
