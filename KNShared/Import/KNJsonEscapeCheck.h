#pragma once

#include <QByteArrayView>

/// Finds "\ud800" and the like without the other half of the surrogate pair, which parsers would replace by
/// another character. Takes JSON in pieces that are cut anywhere.
class KNJsonEscapeCheck
{
public:
    /// Whether all escapes up to here are characters.
    bool accepts(QByteArrayView piece);

private:
    bool acceptsUnit();

    enum class State { Plain, Backslash, Hex };

    State m_state = State::Plain;
    int m_digits = 0;
    unsigned m_unit = 0;
    bool m_needsLow = false; ///< the escape before was a high surrogate
};
