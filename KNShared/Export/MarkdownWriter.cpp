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
    m_columnNames = columnNames;
    m_isFirstRow = true;
}

void MarkdownWriter::writeRow(const KNRow &row)
{
    if (m_isFirstRow)
        writeHead(row);
    QByteArray line;
    for (const KNValue &value : row)
        line += "| " + (value.isNull() ? QByteArray("*NULL*") : cell(value.displayText())) + ' ';
    write(line + "|\n");
}

void MarkdownWriter::endResult()
{
    if (m_isFirstRow)
        writeHead({});
    flush();
}

void MarkdownWriter::writeHead(const KNRow &firstRow)
{
    m_isFirstRow = false;
    QByteArray names;
    QByteArray rule;
    for (qsizetype i = 0; i < m_columnNames.size(); ++i) {
        names += "| " + cell(m_columnNames[i]) + ' ';
        rule += firstRow.value(i).isNumber() ? "| ---: " : "| --- ";
    }
    write(names + "|\n" + rule + "|\n");
}
