#pragma once

#include "Database/VantorDBC.h"
#include "Export/ResultFormat.h"
#include "Export/ResultRows.h"

#include <atomic>

/// A text of rows for the clipboard. Made by any thread, once.
struct KNSHARED_EXPORT ResultCopy
{
    /// UTF-8 bytes beyond which no more rows are added, so that a slip of the hand does not fill the memory.
    static constexpr qint64 LargestSize = 100 * 1024 * 1024;

    QString text;              ///< a null one when it was cancelled
    qsizetype rowsLeftOut = 0; ///< because of the bound
    QStringList remarks;       ///< what the user should know beside that

    /// `nullText` stands for NULL in plain text. One value alone is its plain text, without quotes. `details`
    /// quotes names and values; no other thread uses them meanwhile.
    static ResultCopy make(const ResultRows &rows, const ResultFormat &format, const VantorDBCPtr &details,
                           const QString &nullText, const std::atomic<bool> &cancelled,
                           qint64 largestSize = LargestSize);
};
