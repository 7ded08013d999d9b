#include "Export/JsonText.h"

#include "Database/KNCellText.h"

#include <array>

namespace {

/// The character after the backslash that escapes a byte: itself, a letter, or 'u' for \u00xx; 0 for bytes
/// that need no escape.
constexpr auto JsonEscapes = [] {
    std::array<char, 256> escapes = {};
    for (std::size_t byte = 0; byte < 0x20; ++byte)
        escapes[byte] = 'u';
    escapes['\n'] = 'n';
    escapes['\r'] = 'r';
    escapes['\t'] = 't';
    escapes['"'] = '"';
    escapes['\\'] = '\\';
    return escapes;
}();

void appendJsonString(KNByteBuffer &to, QByteArrayView utf8)
{
    static constexpr char digits[] = "0123456789abcdef";
    to.append('"');
    const char *const end = utf8.end();
    for (const char *run = utf8.begin(); run != end;) {
        const char *const special =
            std::find_if(run, end, [](char c) { return JsonEscapes[static_cast<unsigned char>(c)] != 0; });
        to.append(run, static_cast<std::size_t>(special - run));
        if (special == end)
            break;
        const char escape = JsonEscapes[static_cast<unsigned char>(*special)];
        to.append('\\');
        to.append(escape);
        if (escape == 'u') {
            to.append("00");
            to.append(digits[*special >> 4]);
            to.append(digits[*special & 15]);
        }
        run = special + 1;
    }
    to.append('"');
}

bool isNoJsonNumber(const KNRowCell &cell)
{
    return (cell.tag == KNRowCell::Float || cell.tag == KNRowCell::Double) &&
           !qIsFinite(cell.value().toDouble());
}

} // namespace

QByteArray jsonString(const QString &text)
{
    KNByteBuffer json;
    appendJsonString(json, text.toUtf8());
    return QByteArray(json.data(), static_cast<qsizetype>(json.size()));
}

void appendJsonValue(KNByteBuffer &to, const KNRowCell &cell)
{
    if (cell.tag == KNRowCell::Text) {
        QByteArray repaired;
        return appendJsonString(to, KNCellText::validText(cell, repaired));
    }
    if (cell.tag == KNRowCell::False || cell.tag == KNRowCell::True)
        return to.append(cell.tag == KNRowCell::True ? "true" : "false");
    const bool isQuoted = (!cell.isNumber() && cell.tag != KNRowCell::Null) || isNoJsonNumber(cell);
    if (isQuoted)
        to.append('"');
    const std::size_t begin = to.size();
    KNCellText::append(to, cell);
    if (isQuoted)
        to.append('"');
    else if (to.size() == begin)
        to.append("null");
}
