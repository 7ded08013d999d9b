#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QList>

#include <functional>
#include <optional>

/// A column of a table that is translated to MySQL. Type and size are already in MySQL's spelling where the
/// translation rules leave a choice.
struct MSSQLMySQLColumn
{
    QString columnName;
    QString columnType;
    std::optional<qint64> columnSize = {}; ///< in bytes, -1 for max; nullopt for a type without a size
    bool isNullable = true;
    bool isPrimaryKey = false;
    /// The SELECT expression for a type whose values the client would change; {0} is replaced by the quoted
    /// name. Empty if the column itself is selected.
    QString conversion = {};
    /// Whether that expression returns text whose first character is a type prefix: t for text, x for bytes
    /// in hexadecimal.
    bool isVariant = false;

    /// The columns of a table in their order. Errors are reported. Blocks on the server.
    static QList<MSSQLMySQLColumn> columnsOf(const VantorDBC &details, const QString &table,
                                             const QString &inSchema, KNError *error);
};

/// The MySQL definition of a column and the SELECT expression for its values.
struct MSSQLMySQLTranslation
{
    static constexpr int SubstituteWidth = 21844; ///< characters, for types without a limit in SQL Server

    QString type;
    QString selectExpression;
    QStringList notes; ///< comments after the definition

    /// Translates by the rules. `largestSize` returns the bytes of the longest value of the column; it is
    /// called only if that matters.
    static MSSQLMySQLTranslation of(const MSSQLMySQLColumn &column,
                                    const std::function<qint64()> &largestSize);
};
