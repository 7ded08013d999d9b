#pragma once

#include "Import/KNImportReader.h"

#include <optional>

/// A reader whose first row may hold the names of the columns.
class KNSHARED_EXPORT KNImportHeaderReader : public KNImportReader
{
public:
    QStringList columns() const override { return m_columns; }

protected:
    /// Takes the names of the columns from the first row, or numbers its values. `emptyText` is the error of
    /// a file without rows.
    bool readHeader(bool isFirstRow, const QString &emptyText, KNError *error);
    /// The first row, if it is no header, and the next one afterwards.
    bool takeRow(KNImportRow *row, KNError *error);

    /// Reads the next row as it is in the file; false at the end, and with an error.
    virtual bool nextRow(KNImportRow *row, KNError *error) = 0;

private:
    QStringList m_columns;
    std::optional<KNImportRow> m_first;
};
