#pragma once

#include <QString>

#include <optional>

/// The part of the status line that describes a document.
struct KNDocumentStatus
{
    QString text;                              ///< what the document is doing; null for nothing
    QString selection = {};                    ///< describes the selected cells; null for nothing
    QString database;                          ///< null if it is not known
    std::optional<qint64> rowCount;            ///< empty for documents without rows
    std::optional<qint64> elapsedMilliseconds; ///< of the current or last run; empty without runs
    enum class Outcome { None, Succeeded, Failed };
    Outcome outcome = Outcome::None; ///< of the last run
    int line = 0;                    ///< of the cursor, from 1; 0 for documents without lines
    int column = 0;                  ///< of the cursor, from 1
    QString encoding = {};           ///< of the file, such as "UTF-8"; null without text
    QString lineEnds = {};           ///< "LF", "CRLF" or "CR"; null without text
    bool isRunning = false;
    bool hasOpenTransaction = false;

    friend bool operator==(const KNDocumentStatus &, const KNDocumentStatus &) = default;
};
