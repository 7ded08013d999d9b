#include "Export/MSSQLCellLiteral.h"

#include "Database/KNCellText.h"

#include <algorithm>
#include <array>

namespace {

void appendTextLiteral(KNByteBuffer &to, QByteArrayView text)
{
    const bool isAscii = std::all_of(text.begin(), text.end(), [](char byte) { return (byte & 0x80) == 0; });
    if (!isAscii)
        to.append('N');
    to.append('\'');
    for (qsizetype quote = text.indexOf('\''); quote >= 0; quote = text.indexOf('\'')) {
        to.append(text.first(quote + 1));
        to.append('\'');
        text = text.sliced(quote + 1);
    }
    to.append(text);
    to.append('\'');
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
    default:
        return KNCellText::append(to, cell);
    }
}
