#pragma once

#include "Database/KNRowStore.h"

#include <QString>

/// What is known of a column while its values are read.
struct MSSQLColumn
{
    QString name;
    int type = 0;      ///< db-lib's type number
    int precision = 0; ///< decimal and numeric only
    int scale = 0;
};

/// Turns the raw bytes of one column, as db-lib gives them, into the value of a row, and appends it to
/// `rows`. `data` null means NULL; bytes that are no value of the type read as null. Pure; any thread.
void appendColumnValue(KNRowStore &rows, const MSSQLColumn &column, const unsigned char *data, int length);
