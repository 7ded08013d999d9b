#include "Export/MSSQLScriptParts.h"

#include "Export/MSSQLScriptConditions.h"
#include "Export/MSSQLScriptKind.h"
#include "Foundation/KNFormat.h"
#include "SQL/KNSQLComment.h"

#include <QSet>

#include <algorithm>

namespace {

QString dropsOfForeignKeys(const MSSQLObjectScript &script)
{
    const auto &batches = script.batches;
    QString text;
    if (std::any_of(batches.begin(), batches.end(), MSSQLScriptConditions::addsUnnamedForeignKey))
        text += MSSQLScriptConditions::dropUnnamedForeignKeys(script.object);
    for (const MSSQLScriptBatches::Batch &batch : batches) {
        if (batch.kind == MSSQLScriptBatches::Kind::ForeignKey && !batch.name.isEmpty())
            text += MSSQLScriptConditions::dropForeignKey(script.object, batch.name);
    }
    return text;
}

} // namespace

/// A part with a text that is made of a script while the part is written.
template <typename TextOf>
KNScriptPart MSSQLScriptParts::storedPart(const QString &file, qsizetype index, const TextOf &textOf) const
{
    return {file, m_scripts->entries()[index].object.displayName(),
            [scripts = m_scripts, index, textOf](QIODevice &device, const KNScriptControl &) {
                KNError error;
                const MSSQLObjectScript script = scripts->script(index, &error);
                if (!error)
                    device.write(textOf(script).toUtf8());
                return error;
            }};
}

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

QList<KNScriptPart> MSSQLScriptParts::unordered(const MSSQLScriptOrder &order)
{
    QList<KNScriptPart> parts;
    for (const auto &[from, to] : order.unordered()) {
        const QString note =
            KNFormat("-- Not scripted: an order in which %@ can be created. It names %@, which "
                     "depends on it and comes behind it.\r\n",
                     KNSQLComment::inOneLine(from), KNSQLComment::inOneLine(to));
        parts.append(textPart(QStringLiteral("_NotScripted"), {{}, {}, from}, note));
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
        parts += batches({BatchKind::Trigger}, ".Triggers");
    parts += statements(m_additions.viewTriggers, ".Triggers");
    parts += statements(m_additions.extendedProperties, ".Properties");
    parts += statements(m_additions.permissions, ".Permissions");
    return parts;
}

/// Foreign keys go first, and each object before those that it depends on.
QList<KNScriptPart> MSSQLScriptParts::drops() const
{
    const QString file = QStringLiteral("_Drops");
    const auto &entries = m_scripts->entries();
    QList<KNScriptPart> parts;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        if (entries[i].has(MSSQLScriptBatches::Kind::ForeignKey))
            parts.append(storedPart(file, i, dropsOfForeignKeys));
    }
    for (auto each = entries.crbegin(); each != entries.crend(); ++each)
        parts.append(textPart(file, each->object, MSSQLScriptConditions::drop(each->object)));
    return parts;
}

QList<KNScriptPart> MSSQLScriptParts::schemas() const
{
    QSet<QString> schemas = {QStringLiteral("dbo")};
    QList<KNScriptPart> parts;
    for (const MSSQLScriptStore::Entry &each : m_scripts->entries()) {
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
    const auto text = [conditions = MSSQLScriptConditions(m_options)](const MSSQLObjectScript &script) {
        const MSSQLScriptBatches::Batch stub{MSSQLScriptBatches::Kind::Object, {}, script.stub, {}};
        return conditions.script(script.object, {stub});
    };
    const auto &entries = m_scripts->entries();
    QList<KNScriptPart> parts;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        if (entries[i].hasStub)
            parts.append(storedPart(entries[i].object.displayName() + QLatin1String(".Stub"), i, text));
    }
    return parts;
}

QList<KNScriptPart> MSSQLScriptParts::batches(const Kinds &kinds, const char *fileSuffix) const
{
    const auto text = [conditions = MSSQLScriptConditions(m_options),
                       kinds](const MSSQLObjectScript &script) {
        QList<MSSQLScriptBatches::Batch> chosen;
        std::copy_if(script.batches.begin(), script.batches.end(), std::back_inserter(chosen),
                     [&](const auto &batch) { return kinds.contains(batch.kind); });
        const bool isStub = !script.stub.isNull() && chosen.first().kind == MSSQLScriptBatches::Kind::Object;
        return isStub ? conditions.scriptOfStub(script.object, chosen)
                      : conditions.script(script.object, chosen);
    };
    // A stub may have columns of the types, and any other object may name it.
    bool needsStubs = kinds.contains(MSSQLScriptBatches::Kind::Object);
    const auto &entries = m_scripts->entries();
    QList<KNScriptPart> parts;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const KNScriptObject &object = entries[i].object;
        if (needsStubs && !object.kind.endsWith(QLatin1String("TYPE"))) {
            parts += stubs();
            needsStubs = false;
        }
        if (std::any_of(kinds.begin(), kinds.end(), [&](auto kind) { return entries[i].has(kind); }))
            parts.append(storedPart(object.displayName() + QLatin1String(fileSuffix), i, text));
    }
    return parts;
}

KNScriptPart MSSQLScriptParts::statementsPart(const Statements &statements, const QString &file,
                                              const KNScriptObject &object) const
{
    return {file, object.displayName(),
            [statements, object, conditions = MSSQLScriptConditions(m_options)](QIODevice &device,
                                                                                const KNScriptControl &) {
                KNError error;
                for (const MSSQLScriptStatements::Statement &each : statements->of(object, &error))
                    device.write(conditions.statement(each).toUtf8());
                return error;
            }};
}

/// Those of a schema stand before those of its first object.
QList<KNScriptPart> MSSQLScriptParts::statements(const Statements &statements, const char *fileSuffix) const
{
    QList<KNScriptPart> parts;
    QSet<QString> schemas;
    for (const MSSQLScriptStore::Entry &each : m_scripts->entries()) {
        if (!statements)
            break;
        const QString file = each.object.displayName() + QLatin1String(fileSuffix);
        const KNScriptObject schema = MSSQLScriptStatements::schemaObject(each.object.schema);
        if (!schemas.contains(schema.schema) && statements->has(schema))
            parts.append(statementsPart(statements, file, schema));
        schemas.insert(schema.schema);
        if (statements->has(each.object))
            parts.append(statementsPart(statements, file, each.object));
    }
    return parts;
}
