#include "Export/CsvWriter.h"

#include "Database/KNCellText.h"

#include <algorithm>

namespace {

const QByteArray NullWord = "NULL"; // where an empty field would be an empty line

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

} // namespace

CsvWriter::CsvWriter(QIODevice &device, const CsvOptions &options)
    : DeviceWriter(device)
    , m_options(options)
    , m_nullText(options.nullText.toUtf8())
{
    for (const char character : {options.separator, '"', '\n', '\r'})
        m_isSpecial[static_cast<unsigned char>(character)] = true;
}

void CsvWriter::beginResult(const QStringList &columnNames)
{
    if (!m_isFirst)
        buffer().append('\n');
    m_isFirst = false;
    if (!m_options.hasHeader)
        return;
    for (qsizetype i = 0; i < columnNames.size(); ++i) {
        if (i > 0)
            buffer().append(m_options.separator);
        appendText(columnNames[i].toUtf8(), {});
    }
    write("\n");
}

void CsvWriter::writeRow(Cells cells)
{
    for (const KNRowCell &cell : cells) {
        if (&cell != &cells.front())
            buffer().append(m_options.separator);
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
    const QByteArray &nullText = isOnly && m_nullText.isEmpty() ? NullWord : m_nullText;
    if (cell.tag == KNRowCell::Null) {
        if (!nullText.isEmpty() && needsQuotes(nullText))
            appendQuoted(nullText);
        else
            buffer().append(nullText);
    } else if (cell.tag == KNRowCell::Text) {
        QByteArray repaired;
        appendText(KNCellText::validText(cell, repaired), nullText);
    } else {
        // No other value contains a character that needs quotes.
        if (m_options.quotesAlways)
            buffer().append('"');
        KNCellText::append(buffer(), cell);
        if (m_options.quotesAlways)
            buffer().append('"');
    }
}

/// Quotes a text that would read as NULL.
void CsvWriter::appendText(QByteArrayView text, const QByteArray &nullText)
{
    if (m_options.quotesAlways || needsQuotes(text) || text == nullText)
        appendQuoted(text);
    else
        buffer().append(text);
}

bool CsvWriter::needsQuotes(QByteArrayView text) const
{
    if (text.isEmpty() || hasOuterBlank(text))
        return true;
    return std::any_of(text.begin(), text.end(),
                       [this](char c) { return m_isSpecial[static_cast<unsigned char>(c)]; });
}

void CsvWriter::appendQuoted(QByteArrayView text)
{
    KNByteBuffer &to = buffer();
    to.append('"');
    for (const char c : text) {
        if (c == '"')
            to.append('"');
        to.append(c);
    }
    to.append('"');
}
