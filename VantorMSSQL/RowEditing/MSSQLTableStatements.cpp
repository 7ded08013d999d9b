#include "RowEditing/MSSQLTableStatements.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"
#include "QueryLoader/KNQueryLoader.h"
#include "RowEditing/MSSQLColumnLiteral.h"
#include "RowEditing/MSSQLGridInsert.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "TableDesign/MSSQLStatementCaution.h"

namespace {

const QString Savepoint = QStringLiteral("VantorChanges");

/// A value as the exact DELETE takes it: dates as quoted text.
KNValue exactValue(const KNValue &value)
{
    if (value.kind() != KNValue::Kind::Date)
        return value;
    const QString literal = MSSQLQuoting::literal(value);
    return KNValue(literal.mid(1, literal.size() - 2));
}

/// Collects the text of a loader that delivers before it returns.
class Collector : public KNQueryLoaderDelegate
{
public:
    void queryLoaderLoadedQuery(KNQueryLoader &, const QString &query) override { text = query; }
    QString text;
};

QString textOf(KNQueryLoader &loader, const VantorDBC &details)
{
    const auto collector = std::make_shared<Collector>();
    loader.setDelegate(collector);
    loader.beginLoadingQuery(details);
    return collector->text;
}

} // namespace

MSSQLTableStatements::MSSQLTableStatements(Helper helper, const QString &schema, const QString &table,
                                           bool isQualified)
    : m_helper(std::move(helper))
    , m_schema(schema)
    , m_table(table)
    , m_isQualified(isQualified)
{
}

QString MSSQLTableStatements::assignment(const KNEditRowColumn &column, const KNValue &value) const
{
    return KNFormat("%@ = %@", MSSQLQuoting::quotedName(column.columnName),
                    MSSQLColumnLiteral::of(column, value));
}

QString MSSQLTableStatements::condition(const KNEditRowColumn &column, const KNValue &value) const
{
    static const QStringList incomparable = {QStringLiteral("text"),     QStringLiteral("ntext"),
                                             QStringLiteral("image"),    QStringLiteral("xml"),
                                             QStringLiteral("geometry"), QStringLiteral("geography")};
    if (value.isNull())
        return MSSQLQuoting::quotedName(column.columnName) + QLatin1String(" IS NULL");
    return incomparable.contains(MSSQLColumnLiteral::baseType(column)) ? QString()
                                                                       : assignment(column, value);
}

KNStatementPair MSSQLTableStatements::update(const QString &setClause, const QString &whereClause) const
{
    const QStringList path = m_isQualified ? QStringList{m_schema, m_table} : QStringList{m_table};
    const QString name = path.join(QLatin1Char('.'));
    MSSQLStatementCaution caution;
    caution.addUnlessRead(MSSQLQuoting::escapeTableNameIfRequired(name), path);
    return {
        m_helper->updateQueryForTable(name, m_schema, setClause, whereClause),
        KNFormat("UPDATE\r\n\t%@\r\nSET\r\n\t%@\r\nWHERE\r\n\t%@\r\n", quotedTable(), setClause, whereClause),
        caution.text()};
}

KNStatementPair MSSQLTableStatements::insert(const QList<KNEditRowColumn> &columns) const
{
    return MSSQLGridInsert(m_schema, m_table, columns).statement();
}

KNStatementPair MSSQLTableStatements::insertAndRead(const QList<KNEditRowColumn> &columns,
                                                    const QList<KNEditRowColumn> &key,
                                                    const QList<KNEditRowColumn> &read) const
{
    return MSSQLGridInsert(m_schema, m_table, columns).statementAndRead(key, read);
}

KNStatementPair MSSQLTableStatements::remove(const QList<KNEditRowColumn> &key,
                                             const QList<KNValue> &values) const
{
    MSSQLStatementCaution caution;
    QStringList names;
    QList<KNValue> exact;
    for (qsizetype i = 0; i < key.size(); ++i) {
        names.append(key[i].columnName);
        exact.append(exactValue(values[i]));
        caution.addUnlessRead(MSSQLObjectPath::quoted({key[i].columnName}), {key[i].columnName});
        if (MSSQLQuoting::escapeColumnValue(exact.last()) != MSSQLColumnLiteral::of(key[i], values[i]))
            caution.add(MSSQLStatementCaution::tr("SQL Server may not find a row by this form of its key."));
    }
    const auto loader =
        m_helper->createQueryLoaderForDeleteFromTablePath({m_schema, m_table}, names, {exact});
    return {textOf(*loader, m_helper->databaseConnectionDetails()),
            KNFormat("DELETE TOP (1) FROM %@ WHERE %@;", quotedTable(), conditions(key, values)),
            caution.text()};
}

QString MSSQLTableStatements::select(const QList<KNEditRowColumn> &columns, const QString &whereClause) const
{
    QStringList names;
    for (const KNEditRowColumn &column : columns)
        names.append(MSSQLQuoting::quotedName(column.columnName));
    return KNFormat("SELECT %@ FROM %@ WHERE %@", names.join(QLatin1String(", ")), quotedTable(),
                    whereClause);
}

QString MSSQLTableStatements::savepoint() const
{
    return QLatin1String("SAVE TRANSACTION ") + Savepoint;
}

QString MSSQLTableStatements::rollbackToSavepoint() const
{
    return QLatin1String("ROLLBACK TRANSACTION ") + Savepoint;
}

QString MSSQLTableStatements::optionsQuery() const
{
    return QStringLiteral("SELECT CASE WHEN @@OPTIONS & 256 = 0 THEN 'SET QUOTED_IDENTIFIER OFF' "
                          "ELSE 'SET QUOTED_IDENTIFIER ON' END");
}

bool MSSQLTableStatements::prefersCorrected() const
{
    return MSSQLCorrectedStatements::areUsed();
}

QString MSSQLTableStatements::conditions(const QList<KNEditRowColumn> &columns,
                                         const QList<KNValue> &values) const
{
    QStringList conditions;
    for (qsizetype i = 0; i < columns.size(); ++i)
        conditions.append(condition(columns[i], values[i]));
    return conditions.join(QLatin1String(" AND "));
}

QString MSSQLTableStatements::quotedTable() const
{
    return MSSQLObjectPath::quoted({m_schema, m_table});
}
