#pragma once

#include "Database/KNRowCell.h"
#include "KNSharedExport.h"

#include <QStringList>

#include <span>

/// Renders result sets in a format, row by row as they come. One writer serves all results of a run; one
/// thread uses it.
class KNSHARED_EXPORT ResultWriter
{
public:
    /// The cells of one row, in column order. What is written of each is its stored value.
    using Cells = std::span<const KNRowCell>;

    virtual ~ResultWriter();

    /// Once, before and behind all results.
    virtual void beginRun() {}
    virtual void endRun() {}
    /// A result that has columns.
    virtual void beginResult(const QStringList &columnNames) = 0;
    /// The cells need not outlive the call.
    virtual void writeRow(Cells cells) = 0;
    virtual void endResult() = 0;

    /// Whether everything so far could be written (a full disk, a closed pipe).
    virtual bool isGood() const = 0;
    /// What the user should know about what the format could not hold; empty when it held everything.
    virtual QStringList remarks() const { return {}; }
};
