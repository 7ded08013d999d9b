#include "CommandLine/TableWriter.h"

#include "CommandLine/Terminal.h"

#include <algorithm>

namespace {

constexpr qsizetype RowsForWidths = 200;

QString cellText(const KNValue &value)
{
    if (value.isNull())
        return QStringLiteral("NULL");
    QString text = value.displayText();
    for (QChar &c : text) {
        if (c == QLatin1Char('\n') || c == QLatin1Char('\r'))
            c = QChar(0x21B5);
        else if (c == QLatin1Char('\t'))
            c = QChar(0x21E5);
        else if (c.unicode() < 0x20 || c.unicode() == 0x7F)
            c = QChar(0xFFFD);
    }
    return text;
}

QStringList cellTexts(const KNRow &row)
{
    QStringList cells;
    for (const KNValue &value : row)
        cells.append(cellText(value));
    return cells;
}

} // namespace

void TableWriter::beginResult(const QStringList &columnNames)
{
    m_columnNames = columnNames;
    m_widths.clear();
    for (const QString &name : columnNames)
        m_widths.append(Terminal::displayWidth(name));
    m_held.clear();
    m_holding = true;
}

void TableWriter::writeRow(const KNRow &row)
{
    if (m_holding) {
        m_held.append(row);
        if (m_held.size() >= RowsForWidths)
            writeHeld();
        return;
    }
    QList<bool> rightAligned;
    for (const KNValue &value : row)
        rightAligned.append(value.isNumber());
    writeLine(cellTexts(row), rightAligned);
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
    for (const KNRow &row : std::as_const(m_held)) {
        const QStringList cells = cellTexts(row);
        for (qsizetype i = 0; i < cells.size(); ++i)
            m_widths[i] = std::max(m_widths[i], Terminal::displayWidth(cells[i]));
    }
    writeLine(m_columnNames, QList<bool>(m_columnNames.size(), false));
    QByteArrayList rules;
    for (const int width : std::as_const(m_widths))
        rules.append(QByteArray(width, '-'));
    write(rules.join("  ") + '\n');
    const QList<KNRow> held = std::exchange(m_held, {});
    for (const KNRow &row : held)
        writeRow(row);
}

void TableWriter::writeLine(const QStringList &cells, const QList<bool> &rightAligned)
{
    QString line;
    for (qsizetype i = 0; i < cells.size(); ++i) {
        const QString padding(std::max(0, m_widths[i] - Terminal::displayWidth(cells[i])), QLatin1Char(' '));
        if (i > 0)
            line += QStringLiteral("  ");
        if (rightAligned[i])
            line += padding + cells[i];
        else
            line += i + 1 < cells.size() ? cells[i] + padding : cells[i];
    }
    write(line.toUtf8() + '\n');
}
