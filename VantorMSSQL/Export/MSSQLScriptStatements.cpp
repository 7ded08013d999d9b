#include "Export/MSSQLScriptStatements.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Database/KNRowStream.h"

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

/// Whether the script has the parts that statements are about.
bool isScripted(const QString &part, const KNScriptOptions &options)
{
    return (options.indexes || part != QLatin1String("INDEX")) &&
           (options.constraints || part != QLatin1String("CONSTRAINT")) &&
           (options.triggers || part != QLatin1String("TRIGGER"));
}

} // namespace

KNError MSSQLScriptStatements::read(const VantorDBC &details, const char *title,
                                    const KNScriptOptions &options, const QString &schema,
                                    const QString &name)
{
    const QString sql =
        MSSQLCatalogReader::text(details, QString::fromLatin1(title),
                                 {{QStringLiteral("SCHEMA"), schema}, {QStringLiteral("OBJECT"), name}});
    KNError storing;
    const KNError reading = KNRowStream::eachRow(
        details, sql,
        [&](const KNRow &row) {
            if (storing || !isScripted(row.value(OfPartColumn).text(), options))
                return;
            const KNScriptObject object{
                {}, row.value(OfSchemaColumn).text(), row.value(OfObjectColumn).text()};
            const qint64 position =
                m_records.append({row.value(TextColumn).text(), row.value(ConditionColumn).text(),
                                  row.value(SettingsColumn).text()},
                                 &storing);
            m_positions[{row.value(KindColumn).text(), object.displayName()}].append(position);
        },
        [&] { return bool(storing); });
    if (storing || !reading)
        return storing;
    return MSSQLCatalogReader::reported(reading, "mssql.export.statements", sql);
}

MSSQLScriptStatements::Key MSSQLScriptStatements::keyOf(const KNScriptObject &object)
{
    const bool isType = object.kind == QLatin1String("TYPE") || object.kind == QLatin1String("TABLE_TYPE");
    const bool isSchema = object.kind == QLatin1String("SCHEMA");
    const QString kind = isType ? QStringLiteral("TYPE") : isSchema ? object.kind : QStringLiteral("OBJECT");
    return {kind, object.displayName()};
}

bool MSSQLScriptStatements::has(const KNScriptObject &object) const
{
    return m_positions.contains(keyOf(object));
}

QList<MSSQLScriptStatements::Statement> MSSQLScriptStatements::of(const KNScriptObject &object,
                                                                  KNError *error)
{
    *error = KNError();
    QList<Statement> statements;
    for (const qint64 position : m_positions.value(keyOf(object))) {
        const QStringList record = m_records.record(position, error);
        if (*error)
            return {};
        statements.append({record.value(0), record.value(1), record.value(2)});
    }
    return statements;
}

KNScriptObject MSSQLScriptStatements::schemaObject(const QString &schema)
{
    return {QStringLiteral("SCHEMA"), schema, QStringLiteral("")};
}
