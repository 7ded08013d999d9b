#pragma once

#include "Desktop/Session/QueryHistoryEntry.h"
#include "Foundation/KNError.h"

#include <QCoreApplication>
#include <QList>

#include <functional>

/// The queries that ran on one connection, as lines of JSON in a file below the XDG data folder that only the
/// user can read. Passwords in the texts are masked before they are written. The size of the file is limited:
/// the oldest entries are removed. All work is done in the background, in order; callbacks run on the UI
/// thread. On the UI thread.
class QueryHistory
{
    Q_DECLARE_TR_FUNCTIONS(QueryHistory)

public:
    static constexpr qsizetype MostEntries = 2000;
    static constexpr qint64 MostBytes = qint64(8) * 1024 * 1024;
    /// Longer texts are truncated (UTF-16 units).
    static constexpr qsizetype LongestText = 100'000;

    explicit QueryHistory(const QString &connectionId);

    QString filePath() const { return m_path; }
    void add(const QueryHistoryEntry &entry) const;
    /// Loads the entries, the newest first. Damaged lines are skipped.
    void load(std::function<void(const QList<QueryHistoryEntry> &)> loaded) const;
    void removeAll(std::function<void(const KNError &error)> removed) const;

private:
    QString m_path;
};
