#pragma once

#include "Catalog/MSSQLCatalogReader.h"

/// A column of a table or a view, as the catalog describes it.
struct MSSQLColumnRecord
{
    static constexpr auto Title = "ColumnsForTable";
    static MSSQLCatalogReader::Values values(const QString &schema, const QString &table);
    /// In the table's order; the first row for a name counts.
    static QList<MSSQLColumnRecord> listFrom(DatabaseResultSet &rows);

    QString columnName;
    QString typeName;  ///< with precision and scale if the type has them; [schema].[name] for a user's type
    KNValue maxLength; ///< in bytes, -1 for max; null for a type without a length
    KNValue precision;
    KNValue scale;
    bool isNullable = true;
    bool isPrimaryKey = false;
    bool hasKeyFlag = false; ///< whether the key flag is not 0: rows are found by this column
    QString defaultValue;    ///< the expression; null without one
    bool isIdentity = false;
    bool isComputed = false;
    QString collation; ///< null if it is the database's or the type has none
    bool isSparse = false;
    /// The name of the system type without a size, also of a user's type; null if it is not known.
    QString baseType;

    /// Whether statements can set the column: it is no identity, computed or rowversion column.
    bool isWritable() const;

    /// Whether the column is of this system type, or of a user's type that is based on it.
    bool isBasedOn(const char *systemType) const;

    /// The type with its size, such as nvarchar(50).
    QString displayType() const;
};
