#include "Export/MSSQLTableRowsScript.h"

#include "Catalog/MSSQLVersionHelper.h"
#include "Export/DeviceWriter.h"
#include "Export/MSSQLCellLiteral.h"
#include "Export/ResultStream.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "SQL/KNSQLComment.h"
#include "Scripts/MSSQLVariantText.h"

namespace {

constexpr auto RowsDomain = "mssql.export.rows";
using MSSQLObjectPath::bracketed;

/// The expression that reads a column so that its literals do not change the value.
QString selected(const MSSQLColumnRecord &column, bool isSQL2000)
{
    const QString name = bracketed(column.columnName);
    if (MSSQLTableRowsScript::isClrType(column))
        return KNFormat("CAST(%@ AS varbinary(max)) AS %@", name, name);
    if (MSSQLTableRowsScript::isVariant(column))
        return KNFormat("%@ AS %@", MSSQLVariantText::expression(name, isSQL2000), name);
    return name;
}

/// The SQL before and behind a literal that converts it to the type of a column.
struct Conversion
{
    QByteArray before;
    QByteArray behind;

    static Conversion of(const MSSQLColumnRecord &column)
    {
        if (MSSQLTableRowsScript::isClrType(column))
            return {"CAST(", KNFormat(" AS %@)", column.typeName).toUtf8()};
        // Style 1 keeps blanks between elements.
        if (MSSQLTableRowsScript::isXml(column))
            return {"CONVERT(xml, ", ", 1)"};
        return {};
    }
};

/// Writes rows as statements of one table.
class InsertStatements : public DeviceWriter
{
public:
    InsertStatements(QIODevice &device, const QString &path, const QList<MSSQLColumnRecord> &columns,
                     const KNScriptControl &control)
        : DeviceWriter(device)
        , m_control(control)
        , m_path(path.toUtf8())
        , m_lostTypes(MSSQLTableRowsScript::lostTypes(columns).toUtf8())
    {
        QStringList names;
        for (const MSSQLColumnRecord &column : columns) {
            names.append(bracketed(column.columnName));
            m_hasIdentity = m_hasIdentity || column.isIdentity;
            m_conversions.append(Conversion::of(column));
        }
        m_head = "INSERT INTO " + m_path + " (" + names.join(QLatin1String(", ")).toUtf8() + ") VALUES\r\n";
    }

    void beginResult(const QStringList &) override {}
    void writeRow(Cells cells) override
    {
        if (m_count == 0) {
            write(m_lostTypes);
            switchIdentity("ON");
        }
        const bool isFirst = m_count % MSSQLTableRowsScript::RowsPerStatement == 0;
        if (isFirst && m_count > 0) {
            write(";\r\nGO\r\n");
            m_control.reportRows(MSSQLTableRowsScript::RowsPerStatement);
        }
        KNByteBuffer &text = buffer();
        text.append(isFirst ? QByteArrayView(m_head) : QByteArrayView(",\r\n"));
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const Conversion &conversion = m_conversions[static_cast<qsizetype>(i)];
            text.append(i == 0 ? QByteArrayView("(") : QByteArrayView(", "));
            text.append(conversion.before);
            MSSQLCellLiteral::append(text, cells[i]);
            text.append(conversion.behind);
        }
        text.append(')');
        flushLargePiece();
        ++m_count;
    }
    void endResult() override
    {
        if (m_count > 0) {
            write(";\r\nGO\r\n");
            switchIdentity("OFF");
            m_control.reportRows((m_count - 1) % MSSQLTableRowsScript::RowsPerStatement + 1);
        }
        flush();
    }

private:
    void switchIdentity(const char *state)
    {
        if (m_hasIdentity)
            write("SET IDENTITY_INSERT " + m_path + ' ' + state + "\r\nGO\r\n");
    }

    const KNScriptControl &m_control;
    const QByteArray m_path;
    const QByteArray m_lostTypes;
    QByteArray m_head;
    QList<Conversion> m_conversions; ///< one for each column
    bool m_hasIdentity = false;
    qint64 m_count = 0;
};

} // namespace

MSSQLTableRowsScript::MSSQLTableRowsScript(const VantorDBC &details, const QString &schema,
                                           const QString &table)
    : m_details(details)
    , m_schema(schema)
    , m_table(table)
{
}

bool MSSQLTableRowsScript::isInserted(const MSSQLColumnRecord &column)
{
    return column.isIdentity || column.isWritable();
}

bool MSSQLTableRowsScript::isClrType(const MSSQLColumnRecord &column)
{
    return column.isBasedOn("hierarchyid") || column.isBasedOn("geometry") || column.isBasedOn("geography");
}

bool MSSQLTableRowsScript::isVariant(const MSSQLColumnRecord &column)
{
    return column.isBasedOn("sql_variant");
}

bool MSSQLTableRowsScript::isXml(const MSSQLColumnRecord &column)
{
    return column.isBasedOn("xml");
}

QString MSSQLTableRowsScript::lostTypes(const QList<MSSQLColumnRecord> &columns)
{
    QString comments;
    for (const MSSQLColumnRecord &column : columns) {
        if (isVariant(column))
            comments +=
                KNFormat("-- Not scripted: the types of the values of %@, an sql_variant column: they "
                         "become text.\r\n",
                         KNSQLComment::inOneLine(bracketed(column.columnName)));
    }
    return comments;
}

QList<MSSQLColumnRecord> MSSQLTableRowsScript::columns(KNError *error) const
{
    auto columns =
        MSSQLCatalogReader::records<MSSQLColumnRecord>(m_details, m_schema, m_table, RowsDomain, error);
    columns.removeIf([](const MSSQLColumnRecord &column) { return !isInserted(column); });
    return columns;
}

QString MSSQLTableRowsScript::query(const QList<MSSQLColumnRecord> &columns) const
{
    const bool isSQL2000 = MSSQLVersionHelper::sharedInstance()->isSQL2000(m_details);
    QStringList expressions;
    QStringList keys;
    for (const MSSQLColumnRecord &column : columns) {
        expressions.append(selected(column, isSQL2000));
        if (column.isPrimaryKey)
            keys.append(bracketed(column.columnName));
    }
    const QString rows = KNFormat("SELECT %@ FROM %@.%@", expressions.join(QStringLiteral(", ")),
                                  bracketed(m_schema), bracketed(m_table));
    return keys.isEmpty() ? rows : rows + KNFormat(" ORDER BY %@", keys.join(QStringLiteral(", ")));
}

KNError MSSQLTableRowsScript::write(QIODevice &device, const KNScriptControl &control) const
{
    KNError error;
    const QList<MSSQLColumnRecord> inserted = columns(&error);
    if (error || inserted.isEmpty())
        return error;
    const QString path = KNFormat("%@.%@", bracketed(m_schema), bracketed(m_table));
    InsertStatements statements(device, path, inserted, control);
    return ResultStream::write(m_details, query(inserted), statements, control.isCancelled);
}
