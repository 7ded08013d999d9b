#pragma once

#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

/// Reads published rows cell by cell from the store's memory, without copying. The store must not discard
/// rows meanwhile. Access to nearby rows takes no lock. Used by one thread.
class KNSHARED_EXPORT KNRowReader
{
public:
    explicit KNRowReader(const KNRowStore &rows)
        : m_rows(rows)
    {
    }

    /// Moves before the first cell of `row`; false if the row is not published.
    bool seek(qsizetype row);
    /// Returns the next cell of the row; a null cell after the last column.
    KNRowCell next();
    /// Returns one cell; a null cell outside of the published rows and columns.
    KNRowCell cell(qsizetype row, qsizetype column);

private:
    const KNRowStore &m_rows;
    const KNRowStore::Block *m_block = nullptr; ///< contains the rows from m_firstRow to below m_endRow
    qsizetype m_firstRow = 0;
    qsizetype m_endRow = 0;
    qsizetype m_columnCount = 0;
    qsizetype m_column = 0; ///< of the next cell
    const unsigned char *m_position = nullptr;
};
