#include "Export/CsvWriter.h"

#include "Database/KNCellText.h"

#include <array>

namespace {

constexpr QByteArrayView NullWord = "NULL";

constexpr auto IsSpecial = [] {
    std::array<bool, 256> special = {};
    for (const unsigned char byte : {',', '"', '\n', '\r'})
        special[byte] = true;
    return special;
}();

bool isBlank(QByteArrayView character)
{
    return QString::fromUtf8(character).front().isSpace();
}

/// Whether the text begins or ends with a blank. Non-ASCII characters are decoded only if their first byte
/// may begin a blank.
bool hasOuterBlank(QByteArrayView text)
{
    const auto mayBeBlank = [](char first) {
        const auto byte = static_cast<unsigned char>(first);
        return byte <= 0x20 || byte == 0xC2 || (byte >= 0xE1 && byte <= 0xE3);
    };
    qsizetype last = text.size() - 1;
    while (last > 0 && (static_cast<unsigned char>(text[last]) & 0xC0) == 0x80)
        --last;
    return (mayBeBlank(text.front()) && isBlank(text.first(std::min<qsizetype>(text.size(), 4)))) ||
           (mayBeBlank(text[last]) && isBlank(text.sliced(last)));
}

bool needsQuotes(QByteArrayView text)
{
    if (text.isEmpty() || hasOuterBlank(text))
        return true;
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return IsSpecial[static_cast<unsigned char>(c)]; });
}

void appendQuoted(KNByteBuffer &to, QByteArrayView text)
{
    to.append('"');
    for (const char c : text) {
        if (c == '"')
            to.append('"');
        to.append(c);
    }
    to.append('"');
}

void appendCsvText(KNByteBuffer &to, QByteArrayView text)
{
    if (needsQuotes(text))
        appendQuoted(to, text);
    else
        to.append(text);
}

} // namespace

void CsvWriter::beginResult(const QStringList &columnNames)
{
    if (!m_isFirst)
        buffer().append('\n');
    m_isFirst = false;
    for (qsizetype i = 0; i < columnNames.size(); ++i) {
        if (i > 0)
            buffer().append(',');
        appendCsvText(buffer(), columnNames[i].toUtf8());
    }
    write("\n");
}

void CsvWriter::writeRow(Cells cells)
{
    for (const KNRowCell &cell : cells) {
        if (&cell != &cells.front())
            buffer().append(',');
        writeField(cell, cells.size() == 1);
    }
    buffer().append('\n');
    flushLargePiece();
}

void CsvWriter::endResult()
{
    flush();
}

void CsvWriter::writeField(const KNRowCell &cell, bool isOnly)
{
    if (cell.tag == KNRowCell::Null) {
        if (isOnly)
            buffer().append(NullWord);
    } else if (cell.tag == KNRowCell::Text) {
        QByteArray repaired;
        const QByteArrayView text = KNCellText::validText(cell, repaired);
        if (isOnly && text == NullWord)
            appendQuoted(buffer(), text);
        else
            appendCsvText(buffer(), text);
    } else {
        KNCellText::append(buffer(), cell);
    }
}
