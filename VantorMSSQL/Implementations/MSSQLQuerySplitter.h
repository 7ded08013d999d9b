#pragma once

#include "SQL/KNQuerySplitter.h"

/// Splits T-SQL at its GO lines.
class MSSQLQuerySplitter : public KNQuerySplitter
{
public:
    using KNQuerySplitter::KNQuerySplitter;

    /// A batch's range begins at its first text and ends before its GO line; its line number offset is the
    /// number of line feeds before that text. Unless a full split is required, only the first 10000
    /// characters are split.
    QList<KNQueryDetails> doSplitQuery(const QString &text) override;
};
