#include "Database/KNRowReader.h"

bool KNRowReader::seek(qsizetype row)
{
    if (!m_block || row < m_firstRow || row >= m_endRow) {
        m_block = m_rows.blockOf(row, &m_columnCount, &m_endRow);
        if (!m_block) {
            m_column = m_columnCount;
            return false;
        }
        m_firstRow = KNRowStore::firstRowOf(*m_block);
    }
    m_position = KNRowStore::rowIn(*m_block, row);
    m_column = 0;
    return true;
}

KNRowCell KNRowReader::next()
{
    if (m_column >= m_columnCount)
        return {};
    ++m_column;
    const KNRowCell cell = KNRowCell::at(m_position);
    m_position = cell.end();
    return cell;
}

KNRowCell KNRowReader::cell(qsizetype row, qsizetype column)
{
    if (column < 0 || !seek(row) || column >= m_columnCount)
        return {};
    while (column-- > 0)
        next();
    return next();
}
