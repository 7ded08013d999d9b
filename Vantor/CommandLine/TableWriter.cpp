#include "CommandLine/TableWriter.h"

#include "CommandLine/Terminal.h"

#include <algorithm>

namespace {

constexpr qsizetype RowsForWidths = 200;

QString cellText(const KNRowCell &cell)
{
    if (cell.tag == KNRowCell::Null)
        return QStringLiteral("NULL");
    return Terminal::escapedInOneLine(cell.storedValue().displayText());
}

} // namespace

void TableWriter::beginResult(const QStringList &columnNames)
{
    m_columnNames.clear();
    m_widths.clear();
    for (const QString &name : columnNames) {
        m_columnNames.append(Terminal::escapedInOneLine(name));
        m_widths.append(Terminal::displayWidth(m_columnNames.last()));
    }
    m_held.clear();
    m_holding = true;
}

void TableWriter::writeRow(Cells cells)
{
    Line line;
    line.reserve(std::ssize(cells));
    for (const KNRowCell &cell : cells)
        line.append({cellText(cell), cell.isNumber()});
    if (!m_holding)
        return writeLine(line);
    m_held.append(line);
    if (m_held.size() >= RowsForWidths)
        writeHeld();
}

void TableWriter::endResult()
{
    if (m_holding)
        writeHeld();
    write("\n");
    flush();
}

void TableWriter::writeHeld()
{
    m_holding = false;
    for (const Line &line : std::as_const(m_held)) {
        for (qsizetype i = 0; i < line.size(); ++i)
            m_widths[i] = std::max(m_widths[i], Terminal::displayWidth(line[i].text));
    }
    Line head;
    for (const QString &name : std::as_const(m_columnNames))
        head.append({name, false});
    writeLine(head);
    QByteArrayList rules;
    for (const int width : std::as_const(m_widths))
        rules.append(QByteArray(width, '-'));
    write(rules.join("  ") + '\n');
    for (const Line &line : std::as_const(m_held))
        writeLine(line);
    m_held.clear();
}

void TableWriter::writeLine(const Line &line)
{
    QString text;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const Field &field = line[i];
        const QString padding(std::max(0, m_widths[i] - Terminal::displayWidth(field.text)),
                              QLatin1Char(' '));
        if (i > 0)
            text += QStringLiteral("  ");
        if (field.isNumber)
            text += padding + field.text;
        else
            text += i + 1 < line.size() ? field.text + padding : field.text;
    }
    write(text.toUtf8() + '\n');
}
