#include "Export/MSSQLTableRowsCsv.h"

#include "Export/CsvWriter.h"
#include "Export/ResultStream.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "SQL/KNSQLComment.h"

namespace {

CsvOptions loadableCsv()
{
    CsvOptions options;
    options.hasHeader = false;
    options.nullText = QStringLiteral("\\N");
    return options;
}

/// Writes rows so that no text reads as NULL.
class LoadableCsvRows : public CsvWriter
{
public:
    LoadableCsvRows(QIODevice &device, const KNScriptControl &control)
        : CsvWriter(device, loadableCsv())
        , m_control(control)
    {
    }

    void writeRow(Cells cells) override
    {
        m_cells.assign(cells.begin(), cells.end());
        m_texts.clear();
        for (KNRowCell &cell : m_cells) {
            if (cell.tag != KNRowCell::Text || cell.length == 0 || cell.data[0] != '\\')
                continue;
            m_texts.push_back("\\" + QByteArray(reinterpret_cast<const char *>(cell.data),
                                                static_cast<qsizetype>(cell.length)));
            cell.data = reinterpret_cast<const unsigned char *>(m_texts.back().constData());
            ++cell.length;
        }
        CsvWriter::writeRow(m_cells);
        constexpr qint64 Interval = 500;
        if (++m_count % Interval == 0)
            m_control.reportRows(Interval);
    }

private:
    const KNScriptControl &m_control;
    std::vector<KNRowCell> m_cells;
    std::vector<QByteArray> m_texts; ///< of cells of the row
    qint64 m_count = 0;
};

/// The expression that makes the value of a column of the text that was loaded.
QString loadedValue(const MSSQLColumnRecord &column)
{
    const QString name = MSSQLObjectPath::bracketed(column.columnName);
    const QString text = KNFormat("CASE WHEN %@ = N'\\N' THEN NULL WHEN LEFT(%@, 1) = N'\\' "
                                  "THEN STUFF(%@, 1, 1, N'') ELSE ISNULL(%@, N'') END",
                                  name, name, name, name);
    const QString bytes = KNFormat("CONVERT(varbinary(max), %@, 1)", text);
    if (MSSQLTableRowsScript::isClrType(column))
        return KNFormat("CAST(%@ AS %@)", bytes, column.typeName);
    if (column.isBasedOn("binary") || column.isBasedOn("varbinary") || column.isBasedOn("image"))
        return bytes;
    // A variant holds 4000 characters of nvarchar, and more of varchar.
    if (MSSQLTableRowsScript::isVariant(column))
        return KNFormat("CASE WHEN LEN(%@) > 4000 THEN CONVERT(sql_variant, CONVERT(varchar(8000), %@)) "
                        "ELSE CONVERT(sql_variant, CONVERT(nvarchar(4000), %@)) END",
                        name, text, text);
    if (MSSQLTableRowsScript::isXml(column))
        return KNFormat("CONVERT(xml, %@, 1)", text);
    // CONVERT takes no user's type.
    for (const char *const money : {"money", "smallmoney"}) {
        if (column.isBasedOn(money))
            return KNFormat("CONVERT(%@, %@)", money, text);
    }
    return text;
}

/// The comments at the head: the requirements of the script, and the columns whose types it loses.
QString loadingHead(const QString &fileName, const QString &path, const QList<MSSQLColumnRecord> &columns)
{
    const QString head = KNFormat(
        "-- Loads %@ into %@ with sqlcmd -v DataFolder=\"...\", a folder of the server with a slash "
        "at its end. BULK INSERT of\r\n-- CSV needs SQL Server 2017 and the permission ADMINISTER BULK "
        "OPERATIONS; Azure SQL Database reads blobs only\r\n-- (DATA_SOURCE).\r\n",
        KNSQLComment::inOneLine(fileName), KNSQLComment::inOneLine(path));
    return head + MSSQLTableRowsScript::lostTypes(columns);
}

} // namespace

MSSQLTableRowsCsv::MSSQLTableRowsCsv(const VantorDBC &details, const QString &schema, const QString &table)
    : m_details(details)
    , m_table(details, schema, table)
    , m_path(KNFormat("%@.%@", MSSQLObjectPath::bracketed(schema), MSSQLObjectPath::bracketed(table)))
{
}

KNError MSSQLTableRowsCsv::writeRows(QIODevice &device, const KNScriptControl &control) const
{
    KNError error;
    const QList<MSSQLColumnRecord> columns = m_table.columns(&error);
    if (error || columns.isEmpty())
        return error;
    LoadableCsvRows rows(device, control);
    return ResultStream::write(m_details, m_table.query(columns), rows, control.isCancelled);
}

KNError MSSQLTableRowsCsv::writeLoading(const QString &fileName, QIODevice &device) const
{
    KNError error;
    const QList<MSSQLColumnRecord> columns = m_table.columns(&error);
    if (error || columns.isEmpty())
        return error;
    QStringList names;
    QStringList loaded;
    QStringList values;
    bool hasIdentity = false;
    for (const MSSQLColumnRecord &column : columns) {
        names.append(MSSQLObjectPath::bracketed(column.columnName));
        loaded.append(KNFormat("\t%@ nvarchar(max) NULL", names.last()));
        values.append(KNFormat("\t%@", loadedValue(column)));
        hasIdentity = hasIdentity || column.isIdentity;
    }
    const auto identity = [&](const char *state) {
        return hasIdentity ? KNFormat("SET IDENTITY_INSERT %@ %s\r\n", m_path, state) : QStringLiteral("");
    };
    const QString separator = QStringLiteral(",\r\n");
    const QString script = KNFormat(
        "%@CREATE TABLE #Rows (\r\n%@\r\n)\r\nGO\r\n"
        "BULK INSERT #Rows FROM N'$(DataFolder)%@' WITH (FORMAT = 'CSV', CODEPAGE = '65001', ROWTERMINATOR = "
        "'0x0a', MAXERRORS = 0)\r\nGO\r\nSET DATEFORMAT ymd\r\n%@INSERT INTO %@ (%@)\r\nSELECT\r\n%@\r\nFROM "
        "#Rows\r\n%@"
        "GO\r\nDROP TABLE #Rows\r\nGO\r\n",
        loadingHead(fileName, m_path, columns), loaded.join(separator), fileName, identity("ON"), m_path,
        names.join(QStringLiteral(", ")), values.join(separator), identity("OFF"));
    device.write(script.toUtf8());
    return {};
}
