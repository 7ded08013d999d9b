#pragma once

#include "Database/KNRowStore.h"

#include <QString>

/// Describes a column while its values are read.
struct MSSQLColumn
{
    QString name;
    int type = 0;      ///< db-lib's type number
    int precision = 0; ///< decimal and numeric only
    int scale = 0;
};

/// Decodes the raw bytes of one column, as db-lib delivers them, and appends the value to `rows`. Null `data`
/// means NULL; bytes that are not a valid value of the type become NULL. Pure; any thread.
void appendColumnValue(KNRowStore &rows, const MSSQLColumn &column, const unsigned char *data, int length);
