#include "Export/JsonWriter.h"

#include "Export/JsonText.h"

void JsonWriter::beginRun()
{
    write("[");
}

void JsonWriter::endRun()
{
    write(m_isFirstResult ? "]\n" : "\n]\n");
    flush();
}

void JsonWriter::beginResult(const QStringList &columnNames)
{
    QByteArrayList names;
    for (const QString &name : columnNames)
        names.append(jsonString(name));
    write((m_isFirstResult ? QByteArray("\n") : QByteArray(",\n")) + "{\"columns\": [" + names.join(", ") +
          "],\n \"rows\": [");
    m_isFirstResult = false;
    m_isFirstRow = true;
}

void JsonWriter::writeRow(Cells cells)
{
    buffer().append(m_isFirstRow ? "\n  [" : ",\n  [");
    m_isFirstRow = false;
    for (const KNRowCell &cell : cells) {
        if (&cell != &cells.front())
            buffer().append(", ");
        appendJsonValue(buffer(), cell);
    }
    buffer().append(']');
    flushLargePiece();
}

void JsonWriter::endResult()
{
    write(m_isFirstRow ? "]}" : "\n ]}");
    flush();
}
