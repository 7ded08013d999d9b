#pragma once

#include "Import/KNImportColumnAnalysis.h"
#include "Import/KNImportFormat.h"

#include <QList>

#include <atomic>
#include <functional>

/// The columns of a file, and its first rows.
struct KNSHARED_EXPORT KNImportFileAnalysis
{
    static constexpr quint64 AllRows = std::numeric_limits<quint64>::max();
    static constexpr qsizetype PreviewRows = 50;

    QList<KNImportColumnAnalysis> columns;
    QList<KNImportRow> preview; ///< long values are cut
    quint64 rows = 0;           ///< that were analysed
    QString assumedEncoding;    ///< as KNImportReader says
    bool isComplete = false;    ///< whether these are all rows of the file
    KNError error;              ///< why the reading ended before the end; not set otherwise

    QStringList columnNames() const;

    /// Reads a file once, up to this many rows or until `isCancelled` is set. `progress`, which may be empty,
    /// receives the part that was read. Blocks on the file.
    static KNImportFileAnalysis read(const KNImportFile &file, quint64 mostRows,
                                     const std::atomic<bool> &isCancelled,
                                     const std::function<void(double)> &progress = {});
};
