#pragma once

#include <QString>

#include <optional>

/// The part of the status line that describes a document.
struct KNDocumentStatus
{
    QString text;                              ///< what the document is doing; null for nothing
    QString database;                          ///< null if it is not known
    std::optional<qint64> rowCount;            ///< empty for documents without rows
    std::optional<qint64> elapsedMilliseconds; ///< of the current or last run; empty without runs
    bool isRunning = false;
    bool hasOpenTransaction = false;

    friend bool operator==(const KNDocumentStatus &, const KNDocumentStatus &) = default;
};
