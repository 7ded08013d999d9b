#include "Export/TabWriter.h"

void TabWriter::beginResult(const QStringList &columnNames)
{
    if (!m_withHeader)
        return;
    QByteArrayList fields;
    for (const QString &name : columnNames)
        fields.append(field(name));
    writeLine(fields);
}

void TabWriter::writeRow(Cells cells)
{
    QByteArrayList fields;
    for (const KNRowCell &cell : cells) {
        const KNValue value = cell.storedValue();
        fields.append(value.isNull() ? m_nullText.toUtf8() : field(value.displayText()));
    }
    writeLine(fields);
}

void TabWriter::endResult()
{
    flush();
}

QByteArray TabWriter::field(const QString &text) const
{
    const auto wantsQuotes = [](QChar c) {
        return c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r') ||
               c == QLatin1Char('"');
    };
    QByteArray utf8 = text.toUtf8();
    if (text != m_nullText && std::none_of(text.begin(), text.end(), wantsQuotes))
        return utf8;
    return '"' + utf8.replace('"', "\"\"") + '"';
}

void TabWriter::writeLine(const QByteArrayList &fields)
{
    write((m_isFirstLine ? QByteArray() : QByteArray("\n")) + fields.join('\t'));
    m_isFirstLine = false;
}
