#pragma once

#include "Import/KNCodePage.h"

#include <QString>

#include <limits>

/// The values that a column of a table holds. Connectors read it from the type's name. A value type of any
/// thread.
struct KNImportColumnType
{
    enum class Kind {
        Other, ///< the server reads the text
        Text,
        Integer,
        Decimal,
        Real,
        Boolean,
        Date,
        DateAndTime,
        DateTimeOffset,
        Time,
        Guid,
        Binary,
    };
    static constexpr qint64 Unlimited = std::numeric_limits<qint64>::max();

    Kind kind = Kind::Other;
    /// UTF-16 units of a text, bytes of binary data.
    qint64 maximumLength = Unlimited;
    /// Whether a text column holds every character. In others a server replaces those of other languages.
    bool isUnicode = true;
    /// Of a text that is not Unicode; its maximumLength is in bytes of it.
    KNCodePage codePage = {};
    qint64 minimum = std::numeric_limits<qint64>::min(); ///< of integers
    qint64 maximum = std::numeric_limits<qint64>::max();
    int precision = 38;     ///< digits of a decimal
    int scale = 0;          ///< those behind the point
    int fractionDigits = 7; ///< of seconds; -1 for a type without seconds
    /// Whether the server rounds seconds to .000, .003 and .007.
    bool keepsThirdsOfCentiseconds = false;
    int firstYear = 1; ///< of a date
    int lastYear = 9999;
    /// The type's name for VantorDatabaseClient::insertRows().
    QString literalType;
};
