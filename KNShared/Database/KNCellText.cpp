#include "Database/KNCellText.h"

#include "Database/KNReadFixed.h"
#include "Foundation/KNFloatText.h"
#include "Foundation/KNUtf8.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr std::size_t LongestNumber = 48; ///< an integer or a decimal of 38 digits

template <typename Integer>
void appendInteger(KNByteBuffer &to, Integer number)
{
    char *const place = to.reserve(LongestNumber);
    to.advanceTo(std::to_chars(place, place + LongestNumber, number).ptr);
}

template <typename Float>
void appendFloat(KNByteBuffer &to, Float number)
{
    to.advanceTo(KNWriteFloat(to.reserve(KNLongestFloatText), number));
}

/// Appends a magnitude divided by 10^scale, with exactly `scale` digits after the decimal point.
void appendScaled(KNByteBuffer &to, quint64 magnitude, bool negative, int scale)
{
    char digits[20];
    const auto count = static_cast<int>(std::to_chars(digits, std::end(digits), magnitude).ptr - digits);
    char *place = to.reserve(LongestNumber);
    if (negative && magnitude != 0)
        *place++ = '-';
    const int whole = std::max(0, count - scale);
    if (whole == 0)
        *place++ = '0';
    place = std::copy_n(digits, whole, place);
    if (scale > 0) {
        *place++ = '.';
        place = std::fill_n(place, scale - (count - whole), '0');
        place = std::copy_n(digits + whole, count - whole, place);
    }
    to.advanceTo(place);
}

void appendDecimal(KNByteBuffer &to, const KNRowCell &cell)
{
    const int scale = cell.data[0];
    const std::size_t length = cell.data[1];
    if (length > sizeof(quint64) || scale > KNDecimal::MaximumDigits)
        return to.append(cell.value().displayText().toLatin1());
    quint64 magnitude = 0;
    for (std::size_t i = 0; i < length; ++i)
        magnitude = magnitude << 8 | cell.data[2 + i];
    appendScaled(to, magnitude, cell.tag == KNRowCell::NegativeDecimal, scale);
}

constexpr auto HexPairs = [] {
    std::array<char, 512> pairs = {};
    constexpr char digits[] = "0123456789ABCDEF";
    for (std::size_t byte = 0; byte < 256; ++byte) {
        pairs[2 * byte] = digits[byte >> 4];
        pairs[2 * byte + 1] = digits[byte & 15];
    }
    return pairs;
}();

char *writeHex(char *to, const unsigned char *data, std::size_t length)
{
    for (std::size_t i = 0; i < length; ++i, to += 2)
        std::memcpy(to, HexPairs.data() + 2 * std::size_t{data[i]}, 2);
    return to;
}

void appendBytes(KNByteBuffer &to, const KNRowCell &cell)
{
    char *place = to.reserve(2 + 2 * cell.length);
    *place++ = '0';
    *place++ = 'x';
    to.advanceTo(writeHex(place, cell.data, cell.length));
}

void appendGuid(KNByteBuffer &to, const unsigned char *bytes)
{
    static constexpr unsigned char order[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    char *place = to.reserve(36);
    for (int i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            *place++ = '-';
        place = writeHex(place, bytes + order[i], 1);
    }
    to.advanceTo(place);
}

bool hasOnlyAscii(const unsigned char *data, std::size_t length)
{
    unsigned char all = 0;
    for (std::size_t i = 0; i < length; ++i)
        all |= data[i];
    return all < 0x80;
}

} // namespace

void KNCellText::append(KNByteBuffer &to, const KNRowCell &cell)
{
    switch (cell.tag) {
    case KNRowCell::Null:
        return;
    case KNRowCell::False:
        return to.append('0');
    case KNRowCell::True:
        return to.append('1');
    case KNRowCell::Int32:
        return appendInteger(to, KNReadFixed<qint32>(cell.data));
    case KNRowCell::Int64:
        return appendInteger(to, KNReadFixed<qint64>(cell.data));
    case KNRowCell::Float:
        return appendFloat(to, KNReadFixed<float>(cell.data));
    case KNRowCell::Double:
        return appendFloat(to, KNReadFixed<double>(cell.data));
    case KNRowCell::Text: {
        QByteArray repaired;
        return to.append(validText(cell, repaired));
    }
    case KNRowCell::Bytes:
    case KNRowCell::FlagBytes:
        return appendBytes(to, cell);
    case KNRowCell::Guid:
        return appendGuid(to, cell.data);
    case KNRowCell::Date:
    case KNRowCell::OffsetDate:
        return to.advanceTo(cell.dateTime().write(to.reserve(KNDateTime::LongestText)));
    case KNRowCell::Decimal:
    case KNRowCell::NegativeDecimal:
        return appendDecimal(to, cell);
    case KNRowCell::FloatMoney: {
        const qint64 amount = KNReadFixed<qint32>(cell.data);
        return appendScaled(to, static_cast<quint64>(std::abs(amount)), amount < 0, 4);
    }
    }
}

QByteArrayView KNCellText::validText(const KNRowCell &cell, QByteArray &repaired)
{
    const QByteArrayView text(cell.data, static_cast<qsizetype>(cell.length));
    if (hasOnlyAscii(cell.data, cell.length) || text.isValidUtf8())
        return text;
    repaired = KNTextFromUtf8(text).toUtf8();
    return repaired;
}
