#include "Export/MSSQLScriptParts.h"

#include "Export/MSSQLScriptConditions.h"
#include "Export/MSSQLScriptKind.h"
#include "Foundation/KNFormat.h"
#include "SQL/KNSQLComment.h"

#include <QSet>

#include <algorithm>

KNScriptPart MSSQLScriptParts::textPart(const QString &file, const KNScriptObject &object,
                                        const QString &text)
{
    return {file, object.displayName(), [text](QIODevice &device, const KNScriptControl &) {
                device.write(text.toUtf8());
                return KNError();
            }};
}

QList<KNScriptPart> MSSQLScriptParts::missing(const QList<KNScriptObject> &objects)
{
    QList<KNScriptPart> parts;
    for (const KNScriptObject &object : objects) {
        if (MSSQLScriptKind::isScriptable(object))
            continue;
        const QString kind = object.kind.toLower().replace(QLatin1Char('_'), QLatin1Char(' '));
        parts.append(textPart(
            QStringLiteral("_NotScripted"), object,
            KNFormat("-- Not scripted: %@ %@\r\n", kind, KNSQLComment::inOneLine(object.displayName()))));
    }
    return parts;
}

QList<KNScriptPart> MSSQLScriptParts::all(const QList<KNScriptPart> &rowParts) const
{
    using BatchKind = MSSQLScriptBatches::Kind;
    if (!m_options.schema)
        return rowParts;
    QList<KNScriptPart> parts;
    if (m_options.drops)
        parts += drops();
    parts += schemas();
    QList<BatchKind> ofObject = {BatchKind::Object};
    if (m_options.constraints)
        ofObject.append(BatchKind::Check);
    parts += batches(ofObject, "");
    parts += rowParts;
    if (m_options.indexes)
        parts += batches({BatchKind::Index}, "");
    if (m_options.constraints)
        parts += batches({BatchKind::ForeignKey}, ".ForeignKeys");
    if (m_options.triggers)
        parts +=
            batches({BatchKind::Trigger}, ".Triggers") + statements(m_additions.viewTriggers, ".Triggers");
    if (m_options.extendedProperties)
        parts += statements(m_additions.extendedProperties, ".Properties");
    if (m_options.permissions)
        parts += statements(m_additions.permissions, ".Permissions");
    return parts;
}

/// Foreign keys go first, and each object before those that it depends on.
QList<KNScriptPart> MSSQLScriptParts::drops() const
{
    const QString file = QStringLiteral("_Drops");
    QList<KNScriptPart> parts;
    for (const MSSQLObjectScript &each : m_scripts) {
        if (std::any_of(each.batches.begin(), each.batches.end(),
                        MSSQLScriptConditions::addsUnnamedForeignKey))
            parts.append(
                textPart(file, each.object, MSSQLScriptConditions::dropUnnamedForeignKeys(each.object)));
        for (const MSSQLScriptBatches::Batch &batch : each.batches) {
            if (batch.kind == MSSQLScriptBatches::Kind::ForeignKey && !batch.name.isEmpty())
                parts.append(textPart(file, each.object,
                                      MSSQLScriptConditions::dropForeignKey(each.object, batch.name)));
        }
    }
    for (auto each = m_scripts.crbegin(); each != m_scripts.crend(); ++each)
        parts.append(textPart(file, each->object, MSSQLScriptConditions::drop(each->object)));
    return parts;
}

QList<KNScriptPart> MSSQLScriptParts::schemas() const
{
    QSet<QString> schemas = {QStringLiteral("dbo")};
    QList<KNScriptPart> parts;
    for (const MSSQLObjectScript &each : m_scripts) {
        const QString schema = each.object.schema;
        if (schemas.contains(schema))
            continue;
        schemas.insert(schema);
        parts.append(
            textPart(QStringLiteral("_Schemas"), each.object, MSSQLScriptConditions::createSchema(schema)));
    }
    return parts;
}

/// Creates the objects that others name before their own scripts.
QList<KNScriptPart> MSSQLScriptParts::stubs() const
{
    const MSSQLScriptConditions conditions(m_options);
    QList<KNScriptPart> parts;
    for (const MSSQLObjectScript &each : m_scripts) {
        const MSSQLScriptBatches::Batch stub{MSSQLScriptBatches::Kind::Object, {}, each.stub, {}};
        if (!each.stub.isNull())
            parts.append(textPart(each.object.displayName() + QLatin1String(".Stub"), each.object,
                                  conditions.script(each.object, {stub})));
    }
    return parts;
}

QList<KNScriptPart> MSSQLScriptParts::batches(const QList<MSSQLScriptBatches::Kind> &kinds,
                                              const char *fileSuffix) const
{
    const MSSQLScriptConditions conditions(m_options);
    // A stub may have columns of the types, and any other object may name it.
    bool needsStubs = kinds.contains(MSSQLScriptBatches::Kind::Object);
    QList<KNScriptPart> parts;
    for (const MSSQLObjectScript &each : m_scripts) {
        if (needsStubs && !each.object.kind.endsWith(QLatin1String("TYPE"))) {
            parts += stubs();
            needsStubs = false;
        }
        QList<MSSQLScriptBatches::Batch> chosen;
        std::copy_if(each.batches.begin(), each.batches.end(), std::back_inserter(chosen),
                     [&](const auto &batch) { return kinds.contains(batch.kind); });
        if (chosen.isEmpty())
            continue;
        const bool isStub = !each.stub.isNull() && chosen.first().kind == MSSQLScriptBatches::Kind::Object;
        parts.append(textPart(each.object.displayName() + QLatin1String(fileSuffix), each.object,
                              isStub ? conditions.scriptOfStub(each.object, chosen)
                                     : conditions.script(each.object, chosen)));
    }
    return parts;
}

/// The parts that they are about must be in the script.
bool MSSQLScriptParts::isWanted(const MSSQLScriptStatements::Statement &statement) const
{
    return (m_options.indexes || statement.part != QLatin1String("INDEX")) &&
           (m_options.constraints || statement.part != QLatin1String("CONSTRAINT")) &&
           (m_options.triggers || statement.part != QLatin1String("TRIGGER"));
}

QString MSSQLScriptParts::textOf(const QList<MSSQLScriptStatements::Statement> &statements) const
{
    const MSSQLScriptConditions conditions(m_options);
    QString text;
    for (const MSSQLScriptStatements::Statement &each : statements) {
        if (isWanted(each))
            text += conditions.statement(each);
    }
    return text;
}

QList<KNScriptPart> MSSQLScriptParts::statements(const MSSQLScriptStatements &statements,
                                                 const char *fileSuffix) const
{
    QList<KNScriptPart> parts;
    QSet<QString> schemas;
    for (const MSSQLObjectScript &each : m_scripts) {
        const QString &schema = each.object.schema;
        const QString ofSchema = schemas.contains(schema) ? QString() : textOf(statements.ofSchema(schema));
        schemas.insert(schema);
        const QString text = ofSchema + textOf(statements.of(each.object));
        if (!text.isEmpty())
            parts.append(textPart(each.object.displayName() + QLatin1String(fileSuffix), each.object, text));
    }
    return parts;
}
