#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <optional>

/// A number as files contain it, in the notation of SQL. Pure; any thread.
struct KNSHARED_EXPORT KNImportNumberText
{
    QString text;             ///< "-1234.50" or "1.5e-7": a point, no groups, no currency, no plus sign
    int integerDigits = 0;    ///< without leading zeros
    int fractionDigits = 0;   ///< without trailing zeros
    bool hasExponent = false; ///< the digits are those before it
    bool hasLeadingZeros = false;

    /// Reads "1,234.50", "$5", "-.5" and "1e-7"; with a decimal comma "1.234,50". Groups have three digits.
    /// Empty if the text is no number.
    static std::optional<KNImportNumberText> read(const QString &text, QChar decimalPoint);
};
