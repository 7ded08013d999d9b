#include "Export/MSSQLScriptStatements.h"

#include "Catalog/MSSQLCatalogReader.h"

namespace {

/// Columns of the catalog queries.
enum StatementColumn {
    KindColumn,
    OfSchemaColumn,
    OfObjectColumn,
    ConditionColumn,
    TextColumn,
    OfPartColumn,
    SettingsColumn
};

} // namespace

MSSQLScriptStatements MSSQLScriptStatements::read(const VantorDBC &details, const char *title, KNError *error)
{
    MSSQLScriptStatements statements;
    *error = MSSQLCatalogReader::read(
        details, QString::fromLatin1(title), {}, "mssql.export.statements",
        [&](const DatabaseResultSet &row) {
            const KNScriptObject object{
                {}, row.stringForColumnIndex(OfSchemaColumn), row.stringForColumnIndex(OfObjectColumn)};
            statements.m_statements[{row.stringForColumnIndex(KindColumn), object.displayName()}].append(
                {row.stringForColumnIndex(TextColumn), row.stringForColumnIndex(ConditionColumn),
                 row.stringForColumnIndex(OfPartColumn), row.stringForColumnIndex(SettingsColumn)});
        });
    return statements;
}

QList<MSSQLScriptStatements::Statement> MSSQLScriptStatements::of(const KNScriptObject &object) const
{
    const bool isType = object.kind == QLatin1String("TYPE") || object.kind == QLatin1String("TABLE_TYPE");
    return m_statements.value(
        {isType ? QStringLiteral("TYPE") : QStringLiteral("OBJECT"), object.displayName()});
}

QList<MSSQLScriptStatements::Statement> MSSQLScriptStatements::ofSchema(const QString &schema) const
{
    const KNScriptObject nothing{{}, schema, QStringLiteral("")};
    return m_statements.value({QStringLiteral("SCHEMA"), nothing.displayName()});
}
