#pragma once

#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

/// Reads published rows of a store cell by cell, where they stand. The store must not forget rows meanwhile.
/// Rows near each other are found without the store's lock. One thread uses a reader.
class KNSHARED_EXPORT KNRowReader
{
public:
    explicit KNRowReader(const KNRowStore &rows)
        : m_rows(rows)
    {
    }

    /// Goes before the first cell of a row; false when it is not published.
    bool seek(qsizetype row);
    /// The next cell of the row; a null one behind the last column.
    KNRowCell next();
    /// One cell; a null one outside of the published rows and columns.
    KNRowCell cell(qsizetype row, qsizetype column);

private:
    const KNRowStore &m_rows;
    const KNRowStore::Block *m_block = nullptr; ///< holds the rows from m_firstRow to below m_endRow
    qsizetype m_firstRow = 0;
    qsizetype m_endRow = 0;
    qsizetype m_columnCount = 0;
    qsizetype m_column = 0; ///< that of the next cell
    const unsigned char *m_position = nullptr;
};
