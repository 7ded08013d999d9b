#pragma once

#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

#include <QStringList>

/// Renders result sets in a format, row by row as they come. One writer serves all results of a run; one
/// thread uses it.
class KNSHARED_EXPORT ResultWriter
{
public:
    virtual ~ResultWriter();

    /// Once, before and behind all results.
    virtual void beginRun() {}
    virtual void endRun() {}
    /// A result that has columns.
    virtual void beginResult(const QStringList &columnNames) = 0;
    virtual void writeRow(const KNRow &row) = 0;
    virtual void endResult() = 0;

    /// Whether everything so far could be written (a full disk, a closed pipe).
    virtual bool isGood() const = 0;
    /// What the user should know about what the format could not hold; empty when it held everything.
    virtual QStringList remarks() const { return {}; }
};
