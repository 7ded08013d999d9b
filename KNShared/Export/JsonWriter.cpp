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

void JsonWriter::writeRow(const KNRow &row)
{
    QByteArrayList values;
    for (const KNValue &value : row)
        values.append(jsonValue(value));
    write((m_isFirstRow ? QByteArray("\n  [") : QByteArray(",\n  [")) + values.join(", ") + ']');
    m_isFirstRow = false;
}

void JsonWriter::endResult()
{
    write(m_isFirstRow ? "]}" : "\n ]}");
    flush();
}
