#include "Export/MSSQLCellLiteral.h"

#include "Database/KNCellText.h"
#include "Implementations/MSSQLConstantText.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace {

void appendTextLiteral(KNByteBuffer &to, QByteArrayView text)
{
    const bool isAscii = std::all_of(text.begin(), text.end(), [](char byte) { return (byte & 0x80) == 0; });
    if (!isAscii)
        to.append('N');
    to.append('\'');
    MSSQLWriteConstantText(std::string_view(text.data(), static_cast<std::size_t>(text.size())),
                           [&](std::string_view piece) { to.append(piece.data(), piece.size()); });
    to.append('\'');
}

/// Without an exponent the constant would be a decimal, whose conversion to float may round.
void appendFloatLiteral(KNByteBuffer &to, const KNRowCell &cell)
{
    const std::size_t start = to.size();
    KNCellText::append(to, cell);
    if (std::string_view(to.data() + start, to.size() - start).find('e') == std::string_view::npos)
        to.append(QByteArrayView("e0"));
}

/// The meaning of ISO 8601 dates does not depend on SET DATEFORMAT; there is no blank before an offset.
void appendDateLiteral(KNByteBuffer &to, const KNRowCell &cell)
{
    std::array<char, KNDateTime::LongestText> text;
    const char *const end = cell.dateTime().write(text.data());
    bool isFirstBlank = true;
    to.append('\'');
    for (const char *place = text.data(); place != end; ++place) {
        if (*place != ' ')
            to.append(*place);
        else if (std::exchange(isFirstBlank, false))
            to.append('T');
    }
    to.append('\'');
}

} // namespace

void MSSQLCellLiteral::append(KNByteBuffer &to, const KNRowCell &cell)
{
    switch (cell.tag) {
    case KNRowCell::Null:
        return to.append(QByteArrayView("NULL"));
    case KNRowCell::Text: {
        QByteArray repaired;
        return appendTextLiteral(to, KNCellText::validText(cell, repaired));
    }
    case KNRowCell::Guid:
        to.append('\'');
        KNCellText::append(to, cell);
        return to.append('\'');
    case KNRowCell::Date:
    case KNRowCell::OffsetDate:
        return appendDateLiteral(to, cell);
    case KNRowCell::Float:
    case KNRowCell::Double:
        return appendFloatLiteral(to, cell);
    default:
        return KNCellText::append(to, cell);
    }
}
