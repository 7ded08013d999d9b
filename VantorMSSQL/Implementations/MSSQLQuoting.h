#pragma once

#include "Foundation/KNValue.h"

#include <QStringList>

/// Names, values and types as T-SQL text. All operations are pure and may be called from any thread.
class MSSQLQuoting
{
public:
    /// A name, or schema.name, in brackets where it needs them. A null text gives null; text in brackets
    /// stays. A "]" inside a name is not doubled.
    static QString escapeTableNameIfRequired(const QString &name);
    /// A name, or names joined by dots, without their brackets. A null text gives null.
    static QString unescapeTableNameIfRequired(const QString &name);
    /// schema.table, each in brackets where it needs them; the table alone when the schema is null or empty.
    static QString escapeSchemaAndTable(const QString &schema, const QString &table);
    /// The table with this path, the name or schema and name, quoted as the above.
    static QString escapeTablePaths(const QStringList &path);
    /// A literal for row editing: text without N prefix, lower-case hexadecimal, NULL for null, the rest as
    /// it shows.
    static QString escapeColumnValue(const KNValue &value);
    /// A literal for generated scripts: as escapeColumnValue(), but upper-case hexadecimal, dates in quotes
    /// to the second, and the text "null" in any case means NULL.
    static QString databaseProviderEscape(const KNValue &value);
    /// One name, without parts, in brackets where it needs them; a "]" inside of them is doubled.
    static QString quotedName(const QString &name);
    /// A literal that gives the same value again whatever the session's language and the database's code page
    /// are: as escapeColumnValue(), but text outside of ASCII has the prefix N, and dates stand in quotes in
    /// the form of ISO 8601.
    static QString literal(const KNValue &value);

    /// How a catalog's column type is shown: "nvarchar(50)". `maxLength` counts bytes, -1 stands for (max),
    /// null for none. Precision and scale are not shown.
    static QString displayForColumnType(const QString &typeName, const KNValue &maxLength,
                                        const KNValue &precision, const KNValue &scale);
};
