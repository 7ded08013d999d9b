#include "Export/CsvWriter.h"

namespace {

bool needsQuotes(const QString &text)
{
    if (text.isEmpty() || text.front().isSpace() || text.back().isSpace())
        return true;
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        return c == QLatin1Char(',') || c == QLatin1Char('"') || c == QLatin1Char('\n') ||
               c == QLatin1Char('\r');
    });
}

QByteArray field(const QString &text)
{
    if (!needsQuotes(text))
        return text.toUtf8();
    QByteArray quoted = text.toUtf8();
    quoted.replace('"', "\"\"");
    return '"' + quoted + '"';
}

} // namespace

void CsvWriter::beginResult(const QStringList &columnNames)
{
    QByteArrayList fields;
    for (const QString &name : columnNames)
        fields.append(field(name));
    write((m_isFirst ? QByteArray() : QByteArray("\n")) + fields.join(',') + '\n');
    m_isFirst = false;
}

void CsvWriter::writeRow(const KNRow &row)
{
    QByteArray line;
    for (const KNValue &value : row) {
        if (&value != &row.front())
            line += ',';
        if (!value.isNull())
            line += field(value.displayText());
    }
    write(line + '\n');
}

void CsvWriter::endResult()
{
    flush();
}
