#include "Import/KNJsonEscapeCheck.h"

#include <QChar>

#include <cstring>

bool KNJsonEscapeCheck::accepts(QByteArrayView piece)
{
    if (m_state == State::Plain && !m_needsLow &&
        !std::memchr(piece.data(), '\\', static_cast<size_t>(piece.size())))
        return true;
    for (const char c : piece) {
        switch (m_state) {
        case State::Plain:
            if (c == '\\')
                m_state = State::Backslash;
            else if (m_needsLow)
                return false;
            break;
        case State::Backslash:
            m_state = c == 'u' ? State::Hex : State::Plain;
            if (c != 'u' && m_needsLow)
                return false;
            m_digits = 0;
            m_unit = 0;
            break;
        case State::Hex:
            m_unit = m_unit * 16 + static_cast<unsigned>(QChar::fromLatin1(c).digitValue() >= 0
                                                             ? c - '0'
                                                             : ((c | 0x20) - 'a' + 10) & 0xf);
            if (++m_digits == 4) {
                m_state = State::Plain;
                if (!acceptsUnit())
                    return false;
            }
            break;
        }
    }
    return true;
}

bool KNJsonEscapeCheck::acceptsUnit()
{
    const bool isLow = QChar::isLowSurrogate(m_unit);
    const bool isWanted = isLow == m_needsLow;
    m_needsLow = QChar::isHighSurrogate(m_unit);
    return isWanted;
}
