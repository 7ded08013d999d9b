#include "Import/KNImportLines.h"

#include <algorithm>

bool KNImportLines::fill(KNError *error)
{
    if (m_position < m_buffer.size())
        return true;
    m_buffer = source.read(error);
    m_position = 0;
    return !m_buffer.isEmpty();
}

QByteArrayView KNImportLines::next(KNError *error)
{
    if (!fill(error))
        return {};
    const char *const begin = m_buffer.constData() + m_position;
    const char *const end = m_buffer.constData() + m_buffer.size();
    if (m_endsWithReturn && *begin == '\n') { // belongs to the line before
        m_endsWithReturn = false;
        ++m_position;
        return {begin, 1};
    }
    m_offset = m_isLineOver ? 0 : m_offset + m_pieceSize;
    m_line += m_isLineOver;
    const char *found = std::find_if(begin, end, [](char c) { return c == '\n' || c == '\r'; });
    m_isLineOver = found != end;
    m_endsWithReturn = m_isLineOver && *found == '\r';
    if (m_endsWithReturn && found + 1 != end && found[1] == '\n') {
        ++found;
        m_endsWithReturn = false;
    }
    m_pieceSize = found - begin + (m_isLineOver ? 1 : 0);
    m_position += m_pieceSize;
    return {begin, m_pieceSize};
}
