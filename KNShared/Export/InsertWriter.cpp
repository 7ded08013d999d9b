#include "Export/InsertWriter.h"

#include "Foundation/KNValue.h"

void InsertWriter::beginResult(const QStringList &columnNames)
{
    QStringList names;
    for (const QString &name : columnNames)
        names.append(m_details->quotedName(name));
    m_head = "INSERT INTO " + m_tableName.toUtf8() + " (" + names.join(QLatin1String(", ")).toUtf8() +
             ") VALUES\r\n";
    m_rowsInStatement = 0;
}

void InsertWriter::writeRow(Cells cells)
{
    if (m_rowsInStatement == RowsPerStatement) {
        write(";\r\n");
        m_rowsInStatement = 0;
    }
    QStringList values;
    for (const KNRowCell &cell : cells)
        values.append(m_details->literal(cell.storedValue()));
    write((m_rowsInStatement == 0 ? m_head : QByteArray(",\r\n")) + "\t(" +
          values.join(QLatin1String(", ")).toUtf8() + ')');
    ++m_rowsInStatement;
}

void InsertWriter::endResult()
{
    if (m_rowsInStatement > 0)
        write(";\r\n");
    flush();
}
