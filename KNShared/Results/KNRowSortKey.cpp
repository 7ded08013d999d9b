#include "Results/KNRowSortKey.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <compare>
#include <cstring>

namespace {

constexpr quint64 SignBit = quint64{1} << 63;
constexpr double ExactIntegers = 9007199254740992.0; // 2^53: up to here every integer has its own double

quint64 ordered(qint64 number)
{
    return static_cast<quint64>(number) ^ SignBit;
}

/// Maps doubles to integers in the same order; both zeros are equal.
quint64 ordered(double number)
{
    const auto bits = std::bit_cast<quint64>(number == 0 ? 0.0 : number);
    return bits & SignBit ? ~bits : bits | SignBit;
}

/// Iterates over the code points of UTF-8 text without regard to case. Invalid UTF-8 counts byte by byte.
class FoldedText
{
public:
    FoldedText(const unsigned char *data, std::size_t length)
        : m_next(data)
        , m_end(data + length)
    {
    }
    bool atEnd() const { return m_next == m_end; }
    char32_t take()
    {
        const unsigned char first = *m_next++;
        if (first < 0x80)
            return first >= 'A' && first <= 'Z' ? first + ('a' - 'A') : first;
        const int following = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0;
        if (m_end - m_next < following)
            return first;
        char32_t point = first & (0x3F >> following);
        for (int i = 0; i < following; ++i)
            point = point << 6 | (*m_next++ & 0x3F);
        return QChar::toCaseFolded(point);
    }

private:
    const unsigned char *m_next;
    const unsigned char *m_end;
};

/// Packs the first folded code points at 21 bits each, as many as fit.
quint64 foldedPrefix(const unsigned char *data, std::size_t length)
{
    FoldedText text(data, length);
    quint64 prefix = 0;
    for (int i = 0; i < 3; ++i)
        prefix = prefix << 21 | (text.atEnd() ? 0 : text.take());
    return prefix;
}

quint64 bytesPrefix(const unsigned char *data, std::size_t length)
{
    quint64 prefix = 0;
    for (std::size_t i = 0; i < 8; ++i)
        prefix = prefix << 8 | (i < length ? data[i] : 0);
    return prefix;
}

/// The first eight bytes of a GUID in the order of its text form.
quint64 guidPrefix(const unsigned char *data)
{
    quint64 prefix = 0;
    for (const int place : {3, 2, 1, 0, 5, 4, 7, 6})
        prefix = prefix << 8 | data[place];
    return prefix;
}

int comparedBytes(const KNRowCell &left, const KNRowCell &right)
{
    const int order = std::memcmp(left.data, right.data, std::min(left.length, right.length));
    if (order != 0)
        return order;
    return left.length < right.length ? -1 : left.length > right.length;
}

int comparedText(const KNRowCell &left, const KNRowCell &right)
{
    // A common prefix is equal in any case; the rest begins with a whole character.
    std::size_t same = static_cast<std::size_t>(
        std::mismatch(left.data, left.end(), right.data, right.end()).first - left.data);
    while (same > 0 && same < left.length && (left.data[same] & 0xC0) == 0x80)
        --same;
    FoldedText a(left.data + same, left.length - same);
    FoldedText b(right.data + same, right.length - same);
    while (!a.atEnd() && !b.atEnd()) {
        const char32_t pointOfA = a.take();
        const char32_t pointOfB = b.take();
        if (pointOfA != pointOfB)
            return pointOfA < pointOfB ? -1 : 1;
    }
    if (!a.atEnd() || !b.atEnd())
        return a.atEnd() ? -1 : 1;
    return comparedBytes(left, right);
}

bool isFloating(KNRowCell::Tag tag)
{
    return tag == KNRowCell::Float || tag == KNRowCell::Double;
}

} // namespace

KNRowSortKey::KNRowSortKey(const KNRowCell &cell)
    : m_data(cell.data)
    , m_length(static_cast<quint32>(cell.length))
    , m_tag(cell.tag)
{
    switch (cell.tag) {
    case KNRowCell::Null:
        return;
    case KNRowCell::Date:
    case KNRowCell::OffsetDate:
        m_rank = Rank::Date;
        m_prefix = ordered(cell.dateTime().ticks);
        return;
    case KNRowCell::Text:
        m_rank = Rank::Text;
        m_prefix = foldedPrefix(cell.data, cell.length);
        m_isExact = false;
        return;
    case KNRowCell::Guid:
        m_rank = Rank::Bytes;
        m_prefix = guidPrefix(cell.data);
        m_isExact = false;
        return;
    case KNRowCell::Bytes:
    case KNRowCell::FlagBytes:
        m_rank = Rank::Bytes;
        m_prefix = bytesPrefix(cell.data, cell.length);
        m_isExact = false;
        return;
    default:
        break;
    }
    m_rank = Rank::Number;
    const double number = cell.storedValue().toDouble();
    m_prefix = ordered(number);
    m_isExact = isFloating(cell.tag) || (cell.tag <= KNRowCell::Int64 && std::abs(number) < ExactIntegers);
}

int KNRowSortKey::comparedWhole(const KNRowSortKey &other) const
{
    switch (m_rank) {
    case Rank::Number: {
        if (isFloating(m_tag) || isFloating(other.m_tag))
            return 0;
        const std::strong_ordering order =
            cell().storedValue().decimal() <=> other.cell().storedValue().decimal();
        return order < 0 ? -1 : order > 0;
    }
    case Rank::Text:
        return comparedText(cell(), other.cell());
    case Rank::Bytes:
        // The first half of a GUID is compared by the prefix, in another byte order.
        if (m_tag == KNRowCell::Guid && other.m_tag == KNRowCell::Guid)
            return std::memcmp(m_data + 8, other.m_data + 8, 8);
        return comparedBytes(cell(), other.cell());
    case Rank::Null:
    case Rank::Date:
        break;
    }
    return 0;
}
