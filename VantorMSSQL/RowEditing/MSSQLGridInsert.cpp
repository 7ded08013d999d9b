#include "RowEditing/MSSQLGridInsert.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"
#include "RowEditing/MSSQLColumnLiteral.h"
#include "TableDesign/MSSQLStatementCaution.h"

#include <algorithm>

namespace {

const QLatin1String LineEnd("\r\n");

/// Whether a variable of the shown type takes every value of the column: precision and scale are not shown.
bool canBeDeclared(const KNEditRowColumn &column)
{
    static const QStringList types = {QStringLiteral("uniqueidentifier"),
                                      QStringLiteral("bigint"),
                                      QStringLiteral("int"),
                                      QStringLiteral("smallint"),
                                      QStringLiteral("tinyint"),
                                      QStringLiteral("bit"),
                                      QStringLiteral("date"),
                                      QStringLiteral("smalldatetime"),
                                      QStringLiteral("datetime"),
                                      QStringLiteral("char"),
                                      QStringLiteral("varchar"),
                                      QStringLiteral("nchar"),
                                      QStringLiteral("nvarchar"),
                                      QStringLiteral("binary"),
                                      QStringLiteral("varbinary")};
    return types.contains(MSSQLColumnLiteral::baseType(column));
}

/// Whether a statement may evaluate the default. The catalog has the expressions of constraints in
/// parentheses, and the definitions of bound defaults without.
bool canBeEvaluated(const QString &expression)
{
    return expression.startsWith(QLatin1Char('(')) && expression.endsWith(QLatin1Char(')')) &&
           !expression.contains(QLatin1String("newsequentialid"), Qt::CaseInsensitive);
}

} // namespace

MSSQLGridInsert::MSSQLGridInsert(const QString &schema, const QString &table, QList<KNEditRowColumn> columns)
    : m_schema(schema)
    , m_table(table)
    , m_columns(std::move(columns))
{
}

QList<MSSQLGridInsert::Item> MSSQLGridInsert::items() const
{
    QList<Item> items;
    for (const KNEditRowColumn &column : m_columns)
        items.append({column.columnName, MSSQLColumnLiteral::of(column, column.columnCurrentValue)});
    return items;
}

KNStatementPair MSSQLGridInsert::statement() const
{
    return insertOf(items());
}

KNStatementPair MSSQLGridInsert::insertOf(const QList<Item> &items) const
{
    const MSSQLDesignedTable table{m_schema, m_table};
    MSSQLStatementCaution caution;
    caution.addUnlessRead(table.exactPath(), {m_schema, m_table});
    if (items.isEmpty()) { // a grid sends no statement that no server accepts
        const QString tail = QStringLiteral(" DEFAULT VALUES");
        return {QLatin1String("SET QUOTED_IDENTIFIER OFF\r\nINSERT INTO ") + table.exactPath() + tail,
                QLatin1String("INSERT INTO ") + table.quoted() + tail, caution.text()};
    }
    QStringList exactNames, names, values;
    for (const Item &item : items) {
        exactNames.append(MSSQLDesignedTable::escaped(item.name));
        names.append(MSSQLQuoting::quotedName(item.name));
        values.append(item.value);
        caution.addUnlessRead(exactNames.last(), {item.name});
    }
    const QLatin1String separator(", ");
    return {KNFormat("SET QUOTED_IDENTIFIER OFF\r\nINSERT INTO %@ (%@) VALUES (%@)", table.exactPath(),
                     exactNames.join(separator), values.join(separator)),
            KNFormat("INSERT INTO %@ (%@) VALUES (%@)", table.quoted(), names.join(separator),
                     values.join(separator)),
            caution.text()};
}

/// The condition that finds this part of the new row's key; nothing if it cannot be known. A default that is
/// evaluated first adds its variable to the statements and to the row.
std::optional<QString> MSSQLGridInsert::conditionOf(const KNEditRowColumn &key, QStringList *declarations,
                                                    QList<Item> *items) const
{
    const QString name = MSSQLQuoting::quotedName(key.columnName);
    const auto given = std::find_if(m_columns.begin(), m_columns.end(), [&key](const auto &column) {
        return column.columnName == key.columnName;
    });
    if (given != m_columns.end())
        return given->columnCurrentValue.isNull()
                   ? std::nullopt
                   : std::optional(KNFormat("%@ = %@", name,
                                            MSSQLColumnLiteral::of(*given, given->columnCurrentValue)));
    if (key.isIdentity)
        return KNFormat("%@ = SCOPE_IDENTITY()", name);
    if (!canBeDeclared(key) || !canBeEvaluated(key.columnDefaultValue))
        return std::nullopt;
    const QString variable = KNFormat("@VantorKey%ld", declarations->size() / 2 + 1);
    declarations->append(KNFormat("DECLARE %@ %@", variable, key.typeName));
    declarations->append(KNFormat("SET %@ = %@", variable, key.columnDefaultValue));
    items->append({key.columnName, variable});
    return KNFormat("%@ = %@", name, variable);
}

KNStatementPair MSSQLGridInsert::statementAndRead(const QList<KNEditRowColumn> &key,
                                                  const QList<KNEditRowColumn> &read) const
{
    QList<Item> inserted = items();
    QStringList declarations, conditions, names;
    for (const KNEditRowColumn &column : key) {
        const std::optional<QString> condition = conditionOf(column, &declarations, &inserted);
        if (!condition)
            return {};
        conditions.append(*condition);
    }
    for (const KNEditRowColumn &column : read)
        names.append(MSSQLQuoting::quotedName(column.columnName));
    KNStatementPair pair = insertOf(inserted);
    const QString select =
        KNFormat("SELECT %@ FROM %@ WHERE %@", names.join(QLatin1String(", ")),
                 MSSQLObjectPath::quoted({m_schema, m_table}), conditions.join(QLatin1String(" AND ")));
    for (QString *const statement : {&pair.exact, &pair.corrected})
        *statement = (declarations + QStringList{*statement, select}).join(LineEnd);
    return pair;
}
