#pragma once

#include "KNSharedExport.h"

#include <QString>

/// How CSV files are written. The defaults are those of `vantor-cli` and of copies.
struct KNSHARED_EXPORT CsvOptions
{
    enum class Encoding { Utf8, Utf16 }; ///< UTF-16 is little-endian

    /// ',', ';', tab or '|': characters that numbers and dates never contain.
    char separator = ',';
    bool quotesAlways = false; ///< otherwise where a value needs quotes
    Encoding encoding = Encoding::Utf8;
    bool hasByteOrderMark = false;
    bool hasHeader = true;
    QString nullText = {}; ///< replaces NULL; the same text as a value is quoted

    /// The options used last. Any thread.
    static CsvOptions remembered();
    void remember() const;

    friend bool operator==(const CsvOptions &, const CsvOptions &) = default;
};
