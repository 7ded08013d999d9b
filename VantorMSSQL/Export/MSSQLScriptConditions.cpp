#include "Export/MSSQLScriptConditions.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"

namespace {

using MSSQLObjectPath::bracketed;

QString unicodeLiteral(QString text)
{
    return KNFormat("N'%@'", text.replace(QLatin1Char('\''), QLatin1String("''")));
}

QString pathOf(const QString &schema, const QString &name)
{
    return KNFormat("%@.%@", bracketed(schema), bracketed(name));
}

QString pathOf(const KNScriptObject &object)
{
    return pathOf(object.schema, object.name);
}

QString dropVerbOf(const KNScriptObject &object)
{
    if (object.hasRows)
        return QStringLiteral("TABLE");
    for (const char *const kind : {"FUNCTION", "PROCEDURE", "TYPE"}) {
        if (object.kind.contains(QLatin1String(kind)))
            return QString::fromLatin1(kind);
    }
    return QStringLiteral("VIEW");
}

QString isMissing(const KNScriptObject &object)
{
    return object.kind == QLatin1String("TYPE")
               ? KNFormat("TYPE_ID(%@) IS NULL", unicodeLiteral(pathOf(object)))
               : KNFormat("OBJECT_ID(%@) IS NULL", unicodeLiteral(pathOf(object)));
}

/// The condition under which a batch has something to do; null if it always runs.
QString conditionOf(const KNScriptObject &object, const MSSQLScriptBatches::Batch &batch)
{
    if (batch.kind == MSSQLScriptBatches::Kind::Object)
        return isMissing(object);
    if (batch.name.isEmpty())
        return {};
    if (batch.kind == MSSQLScriptBatches::Kind::Index)
        return KNFormat("INDEXPROPERTY(OBJECT_ID(%@), %@, 'IndexID') IS NULL", unicodeLiteral(pathOf(object)),
                        unicodeLiteral(batch.name));
    return KNFormat("OBJECT_ID(%@) IS NULL", unicodeLiteral(pathOf(object.schema, batch.name)));
}

} // namespace

QString MSSQLScriptConditions::script(const KNScriptObject &object,
                                      const MSSQLScriptBatches::Batch &batch) const
{
    const QString condition = m_ifNotExists ? conditionOf(object, batch) : QString();
    if (condition.isNull())
        return batch.script();
    // Many of the statements must be the only one of their batch.
    MSSQLScriptBatches::Batch conditional = batch;
    conditional.text = KNFormat("IF %@\r\n\tEXEC(%@)", condition, unicodeLiteral(batch.text));
    return conditional.script();
}

QString MSSQLScriptConditions::drop(const KNScriptObject &object)
{
    const QString exists =
        isMissing(object).replace(QLatin1String(" IS NULL"), QLatin1String(" IS NOT NULL"));
    return KNFormat("IF %@\r\n\tDROP %@ %@\r\nGO\r\n", exists, dropVerbOf(object), pathOf(object));
}

QString MSSQLScriptConditions::dropForeignKey(const KNScriptObject &table, const QString &name)
{
    return KNFormat("IF OBJECT_ID(%@) IS NOT NULL\r\n\tALTER TABLE %@ DROP CONSTRAINT %@\r\nGO\r\n",
                    unicodeLiteral(pathOf(table.schema, name)), pathOf(table), bracketed(name));
}

QString MSSQLScriptConditions::createSchema(const QString &schema)
{
    return KNFormat("IF SCHEMA_ID(%@) IS NULL\r\n\tEXEC(%@)\r\nGO\r\n", unicodeLiteral(schema),
                    unicodeLiteral(KNFormat("CREATE SCHEMA %@", bracketed(schema))));
}
