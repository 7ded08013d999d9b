#pragma once

#include "Foundation/KNValue.h"

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
};
