#include "Export/MSSQLScriptConditions.h"

#include "Export/MSSQLScriptKind.h"
#include "Export/MSSQLScriptStub.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"
#include "Scripts/MSSQLModuleHeader.h"

namespace {

using MSSQLObjectPath::bracketed;

QString pathOf(const QString &schema, const QString &name)
{
    return KNFormat("%@.%@", bracketed(schema), bracketed(name));
}

QString pathOf(const KNScriptObject &object)
{
    return pathOf(object.schema, object.name);
}

QString isMissing(const KNScriptObject &object)
{
    return object.kind.endsWith(QLatin1String("TYPE"))
               ? KNFormat("TYPE_ID(%@) IS NULL", MSSQLQuoting::unicodeLiteral(pathOf(object)))
               : KNFormat("OBJECT_ID(%@) IS NULL", MSSQLQuoting::unicodeLiteral(pathOf(object)));
}

/// Whether the batch belongs to the statement that creates the object.
bool isOfObject(const MSSQLScriptBatches::Batch &batch)
{
    return batch.kind == MSSQLScriptBatches::Kind::Object ||
           (batch.kind == MSSQLScriptBatches::Kind::Check && batch.name.isEmpty());
}

/// The condition under which a batch has something to do; null if it always runs.
QString conditionOf(const KNScriptObject &object, const MSSQLScriptBatches::Batch &batch)
{
    if (batch.name.isEmpty())
        return {};
    if (batch.kind == MSSQLScriptBatches::Kind::Index)
        return KNFormat("INDEXPROPERTY(OBJECT_ID(%@), %@, 'IndexID') IS NULL",
                        MSSQLQuoting::unicodeLiteral(pathOf(object)),
                        MSSQLQuoting::unicodeLiteral(batch.name));
    return KNFormat("OBJECT_ID(%@) IS NULL", MSSQLQuoting::unicodeLiteral(pathOf(object.schema, batch.name)));
}

/// The texts run under the condition. Many of them must be the only statement of their batch.
QString conditional(const QString &condition, const QString &settings, const QStringList &texts)
{
    QString statement = KNFormat("%@IF %@\r\n", settings.isNull() ? QStringLiteral("") : settings, condition);
    const bool isBlock = texts.size() > 1;
    if (isBlock)
        statement += QLatin1String("BEGIN\r\n");
    for (const QString &text : texts)
        statement += KNFormat("\tEXEC(%@)\r\n", MSSQLQuoting::unicodeLiteral(text));
    return statement + (isBlock ? QLatin1String("END\r\nGO\r\n") : QLatin1String("GO\r\n"));
}

} // namespace

QString MSSQLScriptConditions::script(const KNScriptObject &object,
                                      const QList<MSSQLScriptBatches::Batch> &batches) const
{
    return scriptIf(isMissing(object), object, batches);
}

QString MSSQLScriptConditions::scriptOfStub(const KNScriptObject &object,
                                            const QList<MSSQLScriptBatches::Batch> &batches) const
{
    QList<MSSQLScriptBatches::Batch> altering = batches;
    for (MSSQLScriptBatches::Batch &batch : altering)
        batch.text = MSSQLModuleHeader::altering(batch.text);
    return scriptIf(MSSQLScriptStub::condition(MSSQLQuoting::unicodeLiteral(pathOf(object))), object,
                    altering);
}

QString MSSQLScriptConditions::statement(const MSSQLScriptStatements::Statement &statement) const
{
    if (m_ifNotExists && !statement.condition.isEmpty())
        return conditional(statement.condition, statement.settings, {statement.text});
    const MSSQLScriptBatches::Batch batch{
        MSSQLScriptBatches::Kind::Object, statement.settings, statement.text, {}};
    return batch.script();
}

QString MSSQLScriptConditions::scriptIf(const QString &objectCondition, const KNScriptObject &object,
                                        const QList<MSSQLScriptBatches::Batch> &batches) const
{
    QString script;
    QString settings;
    QStringList ofObject;
    QStringList unnamedKeys;
    for (const MSSQLScriptBatches::Batch &batch : batches) {
        if (m_ifNotExists && isOfObject(batch)) {
            settings += batch.settings;
            ofObject.append(batch.text);
            continue;
        }
        if (m_ifNotExists && addsUnnamedForeignKey(batch)) {
            unnamedKeys.append(batch.text);
            continue;
        }
        const QString condition = m_ifNotExists ? conditionOf(object, batch) : QString();
        script += condition.isNull() ? batch.script() : conditional(condition, batch.settings, {batch.text});
    }
    // Before the named ones, which the table must not have yet.
    if (!unnamedKeys.isEmpty())
        script = conditional(KNFormat("OBJECTPROPERTY(OBJECT_ID(%@), N'TableHasForeignKey') = 0",
                                      MSSQLQuoting::unicodeLiteral(pathOf(object))),
                             {}, unnamedKeys) +
                 script;
    return ofObject.isEmpty() ? script : conditional(objectCondition, settings, ofObject) + script;
}

QString MSSQLScriptConditions::drop(const KNScriptObject &object)
{
    const QString exists =
        isMissing(object).replace(QLatin1String(" IS NULL"), QLatin1String(" IS NOT NULL"));
    return KNFormat("IF %@\r\n\tDROP %@ %@\r\nGO\r\n", exists, MSSQLScriptKind::dropWord(object),
                    pathOf(object));
}

QString MSSQLScriptConditions::dropForeignKey(const KNScriptObject &table, const QString &name)
{
    return KNFormat("IF OBJECT_ID(%@) IS NOT NULL\r\n\tALTER TABLE %@ DROP CONSTRAINT %@\r\nGO\r\n",
                    MSSQLQuoting::unicodeLiteral(pathOf(table.schema, name)), pathOf(table), bracketed(name));
}

bool MSSQLScriptConditions::addsUnnamedForeignKey(const MSSQLScriptBatches::Batch &batch)
{
    return batch.kind == MSSQLScriptBatches::Kind::ForeignKey && batch.name.isEmpty() &&
           batch.text.contains(QLatin1String("FOREIGN KEY"));
}

QString MSSQLScriptConditions::dropUnnamedForeignKeys(const KNScriptObject &table)
{
    return KNFormat("DECLARE @drop nvarchar(4000)\r\nSET @drop = N''\r\n"
                    "SELECT @drop = @drop + N'ALTER TABLE %@ DROP CONSTRAINT ' + QUOTENAME(name) + N' '\r\n"
                    "FROM sys.foreign_keys\r\n"
                    "WHERE parent_object_id = OBJECT_ID(%@) AND is_system_named = 1\r\nEXEC(@drop)\r\nGO\r\n",
                    pathOf(table).replace(QLatin1Char('\''), QLatin1String("''")),
                    MSSQLQuoting::unicodeLiteral(pathOf(table)));
}

QString MSSQLScriptConditions::createSchema(const QString &schema)
{
    return KNFormat("IF SCHEMA_ID(%@) IS NULL\r\n\tEXEC(%@)\r\nGO\r\n", MSSQLQuoting::unicodeLiteral(schema),
                    MSSQLQuoting::unicodeLiteral(KNFormat("CREATE SCHEMA %@", bracketed(schema))));
}
