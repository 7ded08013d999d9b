#pragma once

#include <QDateTime>
#include <QString>

/// One query of the history.
struct QueryHistoryEntry
{
    QDateTime time; ///< start of the run
    QString text;   ///< the text that ran
    QString database;
    qint64 milliseconds = 0;
    qint64 rowCount = 0;
    QString error; ///< null after success
    bool wasCancelled = false;

    friend bool operator==(const QueryHistoryEntry &, const QueryHistoryEntry &) = default;
};
