#pragma once

#include <QDateTime>
#include <QString>

/// One run of a query, as it is remembered.
struct QueryHistoryEntry
{
    QDateTime time; ///< when it began
    QString text;   ///< what ran
    QString database;
    qint64 milliseconds = 0;
    qint64 rowCount = 0;
    QString error; ///< what went wrong; null when nothing did
    bool wasCancelled = false;

    friend bool operator==(const QueryHistoryEntry &, const QueryHistoryEntry &) = default;
};
