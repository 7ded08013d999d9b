#include "Export/TableWriter.h"

#include "Database/KNCellText.h"
#include "Foundation/KNTerminalText.h"
#include "Foundation/KNUtf8.h"

#include <algorithm>

namespace {

constexpr qsizetype RowsForWidths = 200;
constexpr qsizetype WidestTextColumn =
    4096; ///< wider values exceed the column; padding every row to them would use too much memory

/// Whether every byte takes one terminal column and needs no escape.
bool isPrintableAscii(const char *text, std::size_t size)
{
    bool isPrintable = true;
    for (std::size_t i = 0; i < size; ++i)
        isPrintable &= static_cast<unsigned char>(text[i] - 0x20) < 0x7F - 0x20;
    return isPrintable;
}

} // namespace

void TableWriter::beginResult(const QStringList &columnNames)
{
    m_columnNames.clear();
    m_widths.clear();
    for (const QString &name : columnNames) {
        const QString escaped = KNTerminalText::escapedInOneLine(name);
        m_columnNames.append(escaped.toUtf8());
        m_widths.append(KNTerminalText::displayWidth(escaped));
    }
    m_held.clear();
    m_holding = true;
}

void TableWriter::writeRow(Cells cells)
{
    if (!m_holding) {
        qsizetype column = 0;
        for (const KNRowCell &cell : cells)
            writeField(column++, fieldOf(cell));
        return endLine();
    }
    QList<HeldField> line;
    line.reserve(std::ssize(cells));
    for (const KNRowCell &cell : cells) {
        const Field field = fieldOf(cell);
        line.append({field.text.toByteArray(), field.width, field.isNumber});
    }
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

/// Returns the text of a cell, which is stored in m_text until the next call.
TableWriter::Field TableWriter::fieldOf(const KNRowCell &cell)
{
    m_text.clear();
    if (cell.tag == KNRowCell::Null)
        m_text.append("NULL");
    else
        KNCellText::append(m_text, cell);
    if (!isPrintableAscii(m_text.data(), m_text.size())) {
        const QString escaped = KNTerminalText::escapedInOneLine(
            KNTextFromUtf8(QByteArrayView(m_text.data(), static_cast<qsizetype>(m_text.size()))));
        m_text.clear();
        m_text.append(escaped.toUtf8());
        return {textOf(m_text), KNTerminalText::displayWidth(escaped), false};
    }
    return {textOf(m_text), static_cast<qsizetype>(m_text.size()), cell.isNumber()};
}

QByteArrayView TableWriter::textOf(const KNByteBuffer &buffer)
{
    return QByteArrayView(buffer.data(), static_cast<qsizetype>(buffer.size()));
}

void TableWriter::writeHeld()
{
    m_holding = false;
    for (const QList<HeldField> &line : std::as_const(m_held)) {
        for (qsizetype i = 0; i < line.size(); ++i)
            m_widths[i] = std::max(m_widths[i], std::min(line[i].width, WidestTextColumn));
    }
    for (qsizetype i = 0; i < m_columnNames.size(); ++i)
        writeField(
            i, {m_columnNames[i], KNTerminalText::displayWidth(QString::fromUtf8(m_columnNames[i])), false});
    endLine();
    for (qsizetype i = 0; i < m_widths.size(); ++i) {
        if (i > 0)
            buffer().append("  ");
        appendTimes('-', m_widths[i]);
    }
    endLine();
    for (const QList<HeldField> &line : std::as_const(m_held)) {
        for (qsizetype i = 0; i < line.size(); ++i)
            writeField(i, {line[i].text, line[i].width, line[i].isNumber});
        endLine();
    }
    m_held.clear();
}

/// Fields of a line are written in column order. The last one is not padded.
void TableWriter::writeField(qsizetype column, const Field &field)
{
    const qsizetype padding = std::max<qsizetype>(0, m_widths[column] - field.width);
    if (column > 0)
        buffer().append("  ");
    if (field.isNumber)
        appendTimes(' ', padding);
    buffer().append(field.text);
    if (!field.isNumber && column + 1 < m_widths.size())
        appendTimes(' ', padding);
}

void TableWriter::appendTimes(char byte, qsizetype times)
{
    char *const place = buffer().reserve(static_cast<std::size_t>(times));
    buffer().advanceTo(std::fill_n(place, times, byte));
}

void TableWriter::endLine()
{
    buffer().append('\n');
    flushLargePiece();
}
