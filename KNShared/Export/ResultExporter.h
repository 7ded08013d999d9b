#pragma once

#include "Export/ResultRows.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <atomic>

/// Writes rows to a file on the global queue. The file appears whole or not at all: the rows go into one
/// beside it that takes its place in the end.
class KNSHARED_EXPORT ResultExporter : public std::enable_shared_from_this<ResultExporter>
{
public:
    /// Called on the main thread, once. Neither an error nor `complete` means cancelled. `remarks` is what
    /// the user should know about what the format could not hold.
    using Finished = std::function<void(bool complete, const KNError &error, const QStringList &remarks)>;

    /// Filters for a file panel, one for each format.
    static QStringList fileFilters();

    ResultExporter(ResultRows rows, QString path);

    /// Begins. The file name's extension decides the format; one that no format has is an error.
    void start(Finished finished);
    /// Stops soon, unless the file is in its place already. Any thread.
    void cancel() { m_cancelled = true; }

    qsizetype rowCount() const { return m_rowCount; }
    /// Any thread.
    qsizetype rowsWritten() const { return m_rowsWritten; }

private:
    void run(const Finished &finished);
    bool writeFile(KNError *error, QStringList *remarks);

    const ResultRows m_rows;
    const QString m_path;
    const qsizetype m_rowCount;
    std::atomic<qsizetype> m_rowsWritten = 0;
    std::atomic<bool> m_cancelled = false;
};
