#include "Export/InListWriter.h"

#include "Foundation/KNValue.h"

void InListWriter::beginResult(const QStringList &)
{
    write("(");
}

void InListWriter::writeRow(Cells cells)
{
    for (const KNRowCell &cell : cells) {
        const KNValue value = cell.storedValue();
        if (value.isNull()) {
            m_hadNull = true;
            continue;
        }
        const QString literal = m_details->literal(value);
        if (m_written.contains(literal))
            continue;
        write((m_written.isEmpty() ? QByteArray() : QByteArray(", ")) + literal.toUtf8());
        m_written.insert(literal);
    }
}

void InListWriter::endResult()
{
    write(")");
    flush();
}

QStringList InListWriter::remarks() const
{
    if (!m_hadNull)
        return {};
    return {QStringLiteral("NULL was left out: no value is equal to it.")};
}
