#pragma once

#include "Foundation/KNError.h"

#include <QStringList>
#include <QTemporaryFile>

/// Texts of a script in a temporary file: all of a large database may not fit into memory. Used by one thread
/// at a time.
class MSSQLScriptRecords
{
public:
    /// Adds a record behind the others and returns its position.
    qint64 append(const QStringList &record, KNError *error);
    /// The record at this position; empty after an error.
    QStringList record(qint64 position, KNError *error);

private:
    KNError fileError() const;

    QTemporaryFile m_file;
};
