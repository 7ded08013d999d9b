#include "Results/KNCellMatcher.h"

#include <algorithm>

KNCellMatcher::KNCellMatcher(const QString &text, Qt::CaseSensitivity sensitivity, const Display &display)
    : m_matcher(text, sensitivity)
    , m_ascii((sensitivity == Qt::CaseSensitive ? text : text.toLower()).toLatin1())
    , m_isAscii(std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; }))
    , m_display(display)
{
}

bool KNCellMatcher::matches(const KNRowCell &cell, qsizetype column) const
{
    if (cell.tag == KNRowCell::Null)
        return false;
    if (cell.tag == KNRowCell::Text && m_isAscii)
        return holdsAscii(cell);
    return m_matcher.indexIn(m_display(cell, column)) >= 0;
}

/// In UTF-8, bytes of non-ASCII characters are never ASCII bytes.
bool KNCellMatcher::holdsAscii(const KNRowCell &cell) const
{
    const auto lower = [](unsigned char c) {
        return static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
    };
    if (m_matcher.caseSensitivity() == Qt::CaseSensitive)
        return std::search(cell.data, cell.end(), m_ascii.begin(), m_ascii.end(),
                           [](unsigned char a, char b) { return static_cast<char>(a) == b; }) != cell.end();
    return std::search(cell.data, cell.end(), m_ascii.begin(), m_ascii.end(),
                       [&](unsigned char a, char b) { return lower(a) == b; }) != cell.end();
}
