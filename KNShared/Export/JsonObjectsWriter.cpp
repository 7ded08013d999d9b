#include "Export/JsonObjectsWriter.h"

#include "Export/JsonText.h"
#include "Foundation/KNFormat.h"

#include <QSet>

void JsonObjectsWriter::beginResult(const QStringList &columnNames)
{
    m_keys.clear();
    QSet<QString> taken(columnNames.begin(), columnNames.end());
    QSet<QString> used;
    for (qsizetype i = 0; i < columnNames.size(); ++i) {
        QString name = columnNames[i].isEmpty() ? KNFormat("column %lld", i + 1) : columnNames[i];
        if (used.contains(name)) {
            int number = 2;
            while (taken.contains(KNFormat("%@ %d", name, number)))
                ++number;
            name = KNFormat("%@ %d", name, number);
            taken.insert(name);
        }
        used.insert(name);
        m_keys.append(jsonString(name) + ": ");
    }
    m_isFirstRow = true;
    write("[");
}

void JsonObjectsWriter::writeRow(Cells cells)
{
    buffer().append(m_isFirstRow ? "\n  {" : ",\n  {");
    m_isFirstRow = false;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0)
            buffer().append(", ");
        buffer().append(m_keys[static_cast<qsizetype>(i)]);
        appendJsonValue(buffer(), cells[i]);
    }
    buffer().append('}');
    flushLargePiece();
}

void JsonObjectsWriter::endResult()
{
    write(m_isFirstRow ? "]\n" : "\n]\n");
    flush();
}
