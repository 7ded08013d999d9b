#pragma once

#include "Catalog/MSSQLParameterRecord.h"
#include "RowEditing/KNTypedValue.h"

/// A parameter of a procedure, with the value that the user passes. A value type of any thread.
struct MSSQLStoredProcedureParameter
{
    QString parameterName; ///< with its @
    QString parameterType; ///< as DECLARE takes it
    bool parameterIsOutput = false;
    bool passNull = false;
    QString parameterValue = QStringLiteral(""); ///< as typed; empty for the procedure's default

    /// The built-in type below a type of users; "table type" for a table-valued parameter.
    QString baseType = {};

    static MSSQLStoredProcedureParameter of(const MSSQLParameterRecord &record);

    /// Whether a batch can assign a value: not to a table or a cursor.
    bool isSettable() const;
    KNTypedValue::Input input() const;
    /// Neither a value nor NULL is passed.
    bool isLeftOut() const { return !passNull && parameterValue.isEmpty(); }
};
