#pragma once

#include "Database/KNRowCell.h"
#include "KNSharedExport.h"

#include <QStringList>

#include <span>

/// Writes result sets in a format, row by row as rows arrive. One writer handles all results of a run; used
/// by one thread.
class KNSHARED_EXPORT ResultWriter
{
public:
    /// The cells of one row, in column order. Writers output their stored values.
    using Cells = std::span<const KNRowCell>;

    virtual ~ResultWriter();

    /// beginRun() and endRun() are called once, before and after all results.
    virtual void beginRun() {}
    virtual void endRun() {}
    /// Starts a result with columns.
    virtual void beginResult(const QStringList &columnNames) = 0;
    /// Writes a row. The cells need not outlive the call.
    virtual void writeRow(Cells cells) = 0;
    virtual void endResult() = 0;

    /// Whether all output so far was written (false for a full disk or a closed pipe).
    virtual bool isGood() const = 0;
    /// Explains to the user what the format could not represent; empty if nothing was lost.
    virtual QStringList remarks() const { return {}; }
};
