#include "RowEditing/MSSQLRowStatement.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "RowEditing/MSSQLColumnLiteral.h"
#include "RowEditing/MSSQLValueInput.h"
#include "TableDesign/MSSQLStatementCaution.h"

#include <QHash>

#include <algorithm>

namespace {

/// Empty, not null, without items: null would be written as a word.
QString joined(const QStringList &items, const char *separator)
{
    return items.isEmpty() ? QStringLiteral("") : items.join(QLatin1String(separator));
}

QString exactItem(const KNEditRowColumn &column)
{
    return KNFormat("%@ = %@", MSSQLDesignedTable::escaped(column.columnName),
                    MSSQLColumnLiteral::of(column, column.columnCurrentValue));
}

QString correctedItem(const KNEditRowColumn &column, const KNValue &value)
{
    return KNFormat("%@ = %@", MSSQLQuoting::quotedName(column.columnName),
                    MSSQLColumnLiteral::of(column, value));
}

void addName(MSSQLStatementCaution *caution, const QString &name)
{
    caution->addUnlessRead(MSSQLDesignedTable::escaped(name), {name});
}

bool isWritten(const KNEditRowColumn &column)
{
    return column.hasBeenModified && !column.isIdentity;
}

} // namespace

MSSQLRowStatement::MSSQLRowStatement(const QString &schema, const QString &table,
                                     QList<KNEditRowColumn> columns, std::optional<Values> initialValues)
    : m_schema(schema)
    , m_table(table)
    , m_columns(std::move(columns))
    , m_initialValues(std::move(initialValues))
{
}

QList<KNEditRowColumn> MSSQLRowStatement::columnsFrom(const QList<MSSQLColumnRecord> &records,
                                                      const std::optional<Values> &initialValues)
{
    QList<KNEditRowColumn> columns;
    for (const MSSQLColumnRecord &record : records)
        columns.append(
            {.columnName = record.columnName,
             .columnDefaultValue = record.defaultValue,
             .isPrimaryKey = record.hasKeyFlag,
             .isIdentity = record.isIdentity,
             .columnCurrentValue = initialValues ? initialValues->value(record.columnName) : KNValue(),
             .typeName = record.displayType(),
             .input = MSSQLValueInput::of(record.typeName),
             .isNullable = record.isNullable,
             .isReadOnly = !record.isWritable()});
    return columns;
}

KNStatementPair MSSQLRowStatement::generateQuery() const
{
    return m_initialValues ? generateUpdate() : generateInsert();
}

KNStatementPair MSSQLRowStatement::generateInsert() const
{
    MSSQLStatementCaution caution = cautionOfTable();
    QStringList exactNames, names, values;
    for (const KNEditRowColumn &column : m_columns) {
        if (!isWritten(column))
            continue;
        exactNames.append(MSSQLDesignedTable::escaped(column.columnName));
        names.append(MSSQLQuoting::quotedName(column.columnName));
        values.append(MSSQLColumnLiteral::of(column, column.columnCurrentValue));
        addName(&caution, column.columnName);
    }
    const QString exact = KNFormat("SET QUOTED_IDENTIFIER OFF\r\nINSERT INTO %@ (%@) VALUES (%@)",
                                   exactTable(), joined(exactNames, ", "), joined(values, ", "));
    if (names.isEmpty()) {
        caution.add(
            MSSQLStatementCaution::tr("SQL Server does not accept INSERT with an empty list of columns."));
        return {exact, KNFormat("INSERT INTO %@ DEFAULT VALUES", correctedTable()), caution.text()};
    }
    return {exact,
            KNFormat("INSERT INTO %@ (%@) VALUES (%@)", correctedTable(), joined(names, ", "),
                     joined(values, ", ")),
            caution.text()};
}

KNStatementPair MSSQLRowStatement::generateUpdate() const
{
    MSSQLStatementCaution caution = cautionOfTable();
    cautionOfUpdate(&caution);
    QStringList changes, conditions;
    for (const KNEditRowColumn &column : m_columns) {
        if (column.isPrimaryKey)
            conditions.append(exactItem(column));
        else if (column.hasBeenModified)
            changes.append(exactItem(column));
    }
    return {
        KNFormat("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\tTOP(1)\r\n\t%@\r\nSET\r\n\t%@\r\nWHERE\r\n\t%@",
                 exactTable(), joined(changes, ",\r\n\t"), joined(conditions, " AND ")),
        correctedUpdate(), caution.text()};
}

void MSSQLRowStatement::cautionOfUpdate(MSSQLStatementCaution *caution) const
{
    bool hasKey = false;
    bool hasChange = false;
    for (const KNEditRowColumn &column : m_columns) {
        hasKey = hasKey || column.isPrimaryKey;
        hasChange = hasChange || (column.hasBeenModified && !column.isPrimaryKey);
        if (!column.isPrimaryKey && !column.hasBeenModified)
            continue;
        addName(caution, column.columnName);
        if (column.isPrimaryKey && column.columnCurrentValue != searchedValue(column))
            caution->add(MSSQLStatementCaution::tr(
                "This looks for the row by the edited key: it would change another row, or none."));
        else if (column.isPrimaryKey && column.columnCurrentValue.isNull())
            caution->add(MSSQLStatementCaution::tr("A comparison with NULL would find no row."));
        if (column.isIdentity && !column.isPrimaryKey)
            caution->add(
                MSSQLStatementCaution::tr("SQL Server does not accept a change of an identity column."));
    }
    if (!hasKey)
        caution->add(MSSQLStatementCaution::tr(
            "The table has no primary key, and SQL Server does not accept an empty condition."));
    if (!hasChange)
        caution->add(MSSQLStatementCaution::tr(
            "No column outside of the primary key is modified, and SQL Server does not accept "
            "UPDATE without changes."));
}

/// The value that the row has on the server; the current one of a column that was not among the initial ones.
KNValue MSSQLRowStatement::searchedValue(const KNEditRowColumn &column) const
{
    return m_initialValues ? m_initialValues->value(column.columnName, column.columnCurrentValue)
                           : column.columnCurrentValue;
}

QString MSSQLRowStatement::correctedCondition() const
{
    const bool hasKey = std::any_of(m_columns.begin(), m_columns.end(),
                                    [](const auto &column) { return column.isPrimaryKey; });
    QStringList conditions;
    for (const KNEditRowColumn &column : m_columns) {
        if (hasKey ? !column.isPrimaryKey : !m_initialValues || !m_initialValues->contains(column.columnName))
            continue;
        const KNValue value = searchedValue(column);
        conditions.append(value.isNull()
                              ? MSSQLQuoting::quotedName(column.columnName) + QLatin1String(" IS NULL")
                              : correctedItem(column, value));
    }
    return joined(conditions, " AND ");
}

QString MSSQLRowStatement::correctedUpdate() const
{
    QStringList changes;
    for (const KNEditRowColumn &column : m_columns) {
        if (isWritten(column))
            changes.append(correctedItem(column, column.columnCurrentValue));
    }
    const QString condition = correctedCondition();
    if (changes.isEmpty() || condition.isEmpty())
        return {};
    return KNFormat("UPDATE\r\n\tTOP(1)\r\n\t%@\r\nSET\r\n\t%@\r\nWHERE\r\n\t%@", correctedTable(),
                    joined(changes, ",\r\n\t"), condition);
}

KNStatementPair MSSQLRowStatement::generateReadBack() const
{
    MSSQLStatementCaution caution = cautionOfTable();
    QStringList names, conditions;
    for (const KNEditRowColumn &column : m_columns) {
        names.append(column.columnName);
        caution.addUnlessRead(column.columnName, {column.columnName});
        if (!column.isPrimaryKey)
            continue;
        if (column.columnCurrentValue.isNull()) {
            caution.add(MSSQLStatementCaution::tr(
                "This looks for the row by a part of its key and may read another row."));
            continue;
        }
        conditions.append(exactItem(column));
        addName(&caution, column.columnName);
    }
    if (conditions.isEmpty())
        return {};
    return {KNFormat("SELECT TOP(1) %@ FROM %@ WHERE %@", joined(names, ", "), exactTable(),
                     joined(conditions, " AND ")),
            correctedReadBack(), caution.text()};
}

QString MSSQLRowStatement::correctedReadBack() const
{
    QStringList names, conditions;
    for (const KNEditRowColumn &column : m_columns) {
        names.append(MSSQLQuoting::quotedName(column.columnName));
        if (column.isPrimaryKey && column.columnCurrentValue.isNull())
            return {};
        if (column.isPrimaryKey)
            conditions.append(correctedItem(column, column.columnCurrentValue));
    }
    return KNFormat("SELECT TOP(1) %@ FROM %@ WHERE %@", joined(names, ", "), correctedTable(),
                    joined(conditions, " AND "));
}

QString MSSQLRowStatement::exactTable() const
{
    return MSSQLDesignedTable{m_schema, m_table}.exactPath();
}

QString MSSQLRowStatement::correctedTable() const
{
    return MSSQLDesignedTable{m_schema, m_table}.quoted();
}

MSSQLStatementCaution MSSQLRowStatement::cautionOfTable() const
{
    MSSQLStatementCaution caution;
    caution.addUnlessRead(exactTable(), {m_schema, m_table});
    return caution;
}
