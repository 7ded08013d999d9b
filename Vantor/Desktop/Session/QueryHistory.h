#pragma once

#include "Desktop/Session/QueryHistoryEntry.h"
#include "Foundation/KNError.h"

#include <QCoreApplication>
#include <QList>

#include <functional>

/// What was run on one connection: lines of JSON in a file below the XDG data folder that only the user can
/// read. Passwords in the texts are masked before they are written. The file is kept short: the oldest
/// entries go. Everything happens in the background, in order; answers come on the UI thread. On the UI
/// thread.
class QueryHistory
{
    Q_DECLARE_TR_FUNCTIONS(QueryHistory)

public:
    static constexpr qsizetype MostEntries = 2000;
    static constexpr qint64 MostBytes = qint64(8) * 1024 * 1024;
    /// Longer texts are cut.
    static constexpr qsizetype LongestText = 100'000;

    explicit QueryHistory(const QString &connectionId);

    QString filePath() const { return m_path; }
    void add(const QueryHistoryEntry &entry) const;
    /// The newest first. Lines that are damaged are left out.
    void load(std::function<void(const QList<QueryHistoryEntry> &)> loaded) const;
    void removeAll(std::function<void(const KNError &error)> removed) const;

private:
    QString m_path;
};
