#pragma once

#include "Foundation/KNValue.h"
#include "RowEditing/KNTypedValue.h"

#include <QString>

/// A column of the row that a form edits. A value type of any thread.
struct KNEditRowColumn
{
    QString columnName;
    QString columnDefaultValue = {}; ///< the expression; null without one
    bool isPrimaryKey = false;
    bool isIdentity = false; ///< the server makes the value
    KNValue columnCurrentValue = {};
    bool hasBeenModified = false; ///< by the user, since the row was read

    QString typeName = {}; ///< for display, such as nvarchar(50)
    KNTypedValue::Input input = KNTypedValue::Input::Text;
    bool isNullable = true;
    bool isReadOnly = false; ///< no statement can set it, such as a computed column
};
