#include "Export/MarkdownWriter.h"

namespace {

QByteArray cell(const QString &text)
{
    QString escaped;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == QLatin1Char('\r') && text.mid(i + 1, 1) == QLatin1String("\n"))
            continue;
        if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
            escaped += QLatin1String("<br>");
            continue;
        }
        if (QStringView(u"\\`*_[]<>|&~#").contains(c))
            escaped += QLatin1Char('\\');
        escaped += c;
    }
    return escaped.toUtf8();
}

} // namespace

void MarkdownWriter::beginResult(const QStringList &columnNames)
{
    if (m_isLaterResult)
        write("\n");
    m_isLaterResult = true;
    m_columnNames = columnNames;
    m_isFirstRow = true;
}

void MarkdownWriter::writeRow(Cells cells)
{
    if (m_isFirstRow)
        writeHead(cells);
    QByteArray line;
    for (const KNRowCell &stored : cells) {
        const KNValue value = stored.storedValue();
        line += "| " + (value.isNull() ? QByteArray("*NULL*") : cell(value.displayText())) + ' ';
    }
    write(line + "|\n");
}

void MarkdownWriter::endResult()
{
    if (m_isFirstRow)
        writeHead({});
    flush();
}

void MarkdownWriter::writeHead(Cells firstRow)
{
    m_isFirstRow = false;
    QByteArray names;
    QByteArray rule;
    for (qsizetype i = 0; i < m_columnNames.size(); ++i) {
        names += "| " + cell(m_columnNames[i]) + ' ';
        const auto index = static_cast<std::size_t>(i);
        rule += index < firstRow.size() && firstRow[index].isNumber() ? "| ---: " : "| --- ";
    }
    write(names + "|\n" + rule + "|\n");
}
