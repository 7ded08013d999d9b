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

void JsonObjectsWriter::writeRow(const KNRow &row)
{
    QByteArray object = m_isFirstRow ? "\n  {" : ",\n  {";
    m_isFirstRow = false;
    for (qsizetype i = 0; i < row.size(); ++i) {
        if (i > 0)
            object += ", ";
        object += m_keys[i] + jsonValue(row[i]);
    }
    write(object + '}');
}

void JsonObjectsWriter::endResult()
{
    write(m_isFirstRow ? "]\n" : "\n]\n");
    flush();
}
