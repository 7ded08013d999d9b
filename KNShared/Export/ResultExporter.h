#pragma once

#include "Export/CsvOptions.h"
#include "Export/ResultRows.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <atomic>

struct ResultFormat;

/// Writes rows to a file on the global queue. The file is replaced completely or not at all: the rows are
/// written to a temporary file in the same folder, which replaces it at the end.
class KNSHARED_EXPORT ResultExporter : public std::enable_shared_from_this<ResultExporter>
{
public:
    /// Called once, on the main thread. Without an error and with `complete` false, the export was cancelled.
    /// `remarks` explain to the user what the format could not represent.
    using Finished = std::function<void(bool complete, const KNError &error, const QStringList &remarks)>;

    /// The filters for a file dialog, one per format; that of the preferred extension comes first.
    static QStringList fileFilters(const QString &preferredExtension = {});

    /// `csv` applies to CSV files.
    ResultExporter(ResultRows rows, QString path, CsvOptions csv = {});

    /// Starts the export. The file extension selects the format; an unknown extension is an error.
    void start(Finished finished);
    /// Requests cancellation; no effect once the file has been replaced. Any thread.
    void cancel() { m_cancelled = true; }

    qsizetype rowCount() const { return m_rowCount; }
    /// Any thread.
    qsizetype rowsWritten() const { return m_rowsWritten; }

private:
    void run(const Finished &finished);
    bool writeFile(KNError *error, QStringList *remarks);
    bool write(QIODevice &device, const QString &path, const ResultFormat &format, bool *isGood,
               QStringList *remarks);

    const ResultRows m_rows;
    const QString m_path;
    const CsvOptions m_csv;
    const qsizetype m_rowCount;
    std::atomic<qsizetype> m_rowsWritten = 0;
    std::atomic<bool> m_cancelled = false;
};
