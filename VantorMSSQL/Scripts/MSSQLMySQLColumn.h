#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QList>

#include <functional>
#include <optional>

/// A column of a table that becomes a MySQL table. What the type and the size hold is already spelled for
/// MySQL where the rules of translation leave that open.
struct MSSQLMySQLColumn
{
    QString columnName;
    QString columnType;
    std::optional<qint64> columnSize = {}; ///< in bytes, -1 for max; empty where the type stands alone
    bool isNullable = true;
    bool isPrimaryKey = false;
    /// The SELECT expression for a type whose values the client would change; {0} stands for the quoted name.
    /// Empty where the column itself is selected.
    QString conversion = {};
    /// Whether that expression returns text whose first character says what the rest is: t for text, x for
    /// bytes in hexadecimal.
    bool isVariant = false;

    /// The columns of a table in their order. What fails is reported. Blocks on the server.
    static QList<MSSQLMySQLColumn> columnsOf(const VantorDBC &details, const QString &table,
                                             const QString &inSchema, KNError *error);
};

/// What a column's definition and its SELECT become.
struct MSSQLMySQLTranslation
{
    static constexpr int SubstituteWidth = 21844; ///< characters, for what has no limit in SQL Server

    QString type;
    QString selectExpression;
    QStringList notes; ///< comments behind the definition

    /// Translates by the rules. `largestSize` gives the bytes of the longest value of the column; it is asked
    /// only when that matters.
    static MSSQLMySQLTranslation of(const MSSQLMySQLColumn &column,
                                    const std::function<qint64()> &largestSize);
};
