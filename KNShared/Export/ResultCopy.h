#pragma once

#include "Database/VantorDBC.h"
#include "Export/ResultFormat.h"
#include "Export/ResultRows.h"

#include <atomic>

/// Rows as text for the clipboard. Created once, by any thread.
struct KNSHARED_EXPORT ResultCopy
{
    /// No more rows are added beyond this number of UTF-8 bytes, so that an accidental copy does not exhaust
    /// memory.
    static constexpr qint64 LargestSize = 100 * 1024 * 1024;

    QString text;              ///< null if cancelled
    qsizetype rowsLeftOut = 0; ///< because of LargestSize
    QStringList remarks;       ///< further information for the user

    /// `nullText` replaces NULL in plain text. A single value is copied as plain text without quotes.
    /// `details` quotes names and values; no other thread may use them during the call.
    static ResultCopy make(const ResultRows &rows, const ResultFormat &format, const VantorDBCPtr &details,
                           const QString &nullText, const std::atomic<bool> &cancelled,
                           qint64 largestSize = LargestSize);
};
