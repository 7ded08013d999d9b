#include "Scripts/MSSQLStatementTemplate.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "SQL/KNSQLComment.h"

namespace {

using Columns = QList<MSSQLColumnRecord>;

const QString lineEnd = QStringLiteral("\r\n");

/// Indented lines with commas between them.
QString listOf(const QStringList &lines)
{
    const QString indent = lineEnd + QStringLiteral("    ");
    return lines.isEmpty() ? QStringLiteral("") : indent + lines.join(QLatin1Char(',') + indent);
}

QString commented(const QString &code, const QString &comment)
{
    return KNFormat("%@ /* %@ */", code, KNSQLComment::inBlock(comment));
}

QString quoted(const QString &name)
{
    return MSSQLObjectPath::quoted({name});
}

QString described(const MSSQLColumnRecord &column)
{
    return KNFormat("%@, %@", column.displayType(), column.isNullable ? "null" : "not null");
}

Columns writable(Columns columns)
{
    columns.removeIf([](const MSSQLColumnRecord &column) { return !column.isWritable(); });
    return columns;
}

/// Placeholders compare with NULL, which no row equals.
QString conditionFor(const Columns &columns)
{
    QStringList conditions;
    for (const MSSQLColumnRecord &column : columns) {
        if (column.isPrimaryKey)
            conditions.append(KNFormat("%@ = NULL", quoted(column.columnName)));
    }
    return conditions.isEmpty() ? QStringLiteral("1 = 0") : conditions.join(QStringLiteral(" AND "));
}

} // namespace

QString MSSQLStatementTemplate::select(const QString &schema, const QString &object, const Columns &columns)
{
    QStringList lines;
    for (const MSSQLColumnRecord &column : columns)
        lines.append(quoted(column.columnName));
    return KNFormat("SELECT%@%@FROM %@;%@", listOf(lines), lineEnd, MSSQLObjectPath::quoted({schema, object}),
                    lineEnd);
}

QString MSSQLStatementTemplate::insert(const QString &schema, const QString &object, const Columns &columns)
{
    const QString path = MSSQLObjectPath::quoted({schema, object});
    const Columns written = writable(columns);
    if (written.isEmpty())
        return KNFormat("INSERT INTO %@ DEFAULT VALUES;%@", path, lineEnd);
    QStringList names;
    QStringList values;
    for (const MSSQLColumnRecord &column : written) {
        names.append(quoted(column.columnName));
        values.append(
            commented(column.defaultValue.isNull() ? QStringLiteral("NULL") : QStringLiteral("DEFAULT"),
                      KNFormat("%@ %@", column.columnName, described(column))));
    }
    return KNFormat("INSERT INTO %@ (%@%@)%@VALUES (%@%@);%@", path, listOf(names), lineEnd, lineEnd,
                    listOf(values), lineEnd, lineEnd);
}

QString MSSQLStatementTemplate::update(const QString &schema, const QString &object, const Columns &columns)
{
    QStringList lines;
    for (const MSSQLColumnRecord &column : writable(columns))
        lines.append(commented(KNFormat("%@ = NULL", quoted(column.columnName)), described(column)));
    return KNFormat("UPDATE %@%@SET%@%@WHERE %@;%@", MSSQLObjectPath::quoted({schema, object}), lineEnd,
                    listOf(lines), lineEnd, conditionFor(columns), lineEnd);
}

QString MSSQLStatementTemplate::execute(const QString &schema, const QString &procedure,
                                        const QList<MSSQLParameterRecord> &parameters)
{
    QString variables = QStringLiteral("");
    QStringList arguments;
    QStringList outputs;
    for (const MSSQLParameterRecord &parameter : parameters) {
        const QString name = parameter.parameterName;
        if (!parameter.isOutput) {
            arguments.append(commented(KNFormat("%@ = NULL", name), parameter.typeName));
            continue;
        }
        variables += KNFormat("DECLARE %@ %@;%@", name, parameter.typeName, lineEnd);
        arguments.append(KNFormat("%@ = %@ OUTPUT", name, name));
        outputs.append(KNFormat("%@ AS %@", name, quoted(name)));
    }
    QString text = KNFormat("%@EXECUTE %@%@;%@", variables, MSSQLObjectPath::quoted({schema, procedure}),
                            listOf(arguments), lineEnd);
    if (!outputs.isEmpty())
        text += KNFormat("SELECT%@;%@", listOf(outputs), lineEnd);
    return text;
}
