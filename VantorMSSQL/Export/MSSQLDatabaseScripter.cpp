#include "Export/MSSQLDatabaseScripter.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Export/MSSQLScriptConditions.h"
#include "Export/MSSQLTableRowsScript.h"
#include "Foundation/KNFormat.h"
#include "SQL/KNSQLComment.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"

#include <QSet>

#include <algorithm>

namespace {

constexpr auto ScripterDomain = "mssql.export.objects";

/// `file` keeps what must run later than the object itself in another file.
KNScriptPart textPart(const QString &file, const KNScriptObject &object, const QString &text)
{
    return {file, object.displayName(), [text](QIODevice &device, const KNRowStream::IsCancelled &) {
                device.write(text.toUtf8());
                return KNError();
            }};
}

/// No generator makes a script of table types and of modules from assemblies.
bool isScriptable(const KNScriptObject &object)
{
    return object.kind != QLatin1String("TABLE_TYPE") && !object.kind.startsWith(QLatin1String("CLR"));
}

/// Names the objects that are missing in the script; empty if there are none.
QList<KNScriptPart> missingParts(const QList<KNScriptObject> &objects)
{
    QList<KNScriptPart> parts;
    for (const KNScriptObject &object : objects) {
        if (!isScriptable(object))
            parts.append(textPart(QStringLiteral("_NotScripted"), object,
                                  KNFormat("-- Not scripted: %@ %@\r\n",
                                           object.kind.toLower().replace(QLatin1Char('_'), QLatin1Char(' ')),
                                           KNSQLComment::inOneLine(object.displayName()))));
    }
    return parts;
}

/// Visits an object after those that it depends on.
class DependencyOrder
{
public:
    DependencyOrder(const QList<KNScriptObject> &objects, const QMultiHash<QString, QString> &dependencies)
        : m_dependencies(dependencies)
    {
        for (const KNScriptObject &object : objects)
            m_objects.insert(object.displayName(), object);
    }

    /// Has a stack of its own: a chain of dependencies may be long.
    void visit(const KNScriptObject &first)
    {
        QList<std::pair<QString, QStringList>> stack; // a name, and what is still to be visited before it
        const auto enter = [&](const QString &name) {
            if (!m_objects.contains(name) || m_entered.contains(name))
                return;
            m_entered.insert(name);
            QStringList needed = m_dependencies.values(name);
            std::sort(needed.begin(), needed.end(), std::greater<>());
            stack.append({name, needed});
        };
        enter(first.displayName());
        while (!stack.isEmpty()) {
            if (stack.last().second.isEmpty())
                m_ordered.append(m_objects.value(stack.takeLast().first));
            else
                enter(QString(stack.last().second.takeLast()));
        }
    }
    const QList<KNScriptObject> &ordered() const { return m_ordered; }

private:
    const QMultiHash<QString, QString> &m_dependencies;
    QHash<QString, KNScriptObject> m_objects;
    QSet<QString> m_entered;
    QList<KNScriptObject> m_ordered;
};

bool isFunction(const KNScriptObject &object)
{
    return object.kind.contains(QLatin1String("FUNCTION"));
}

bool isProcedure(const KNScriptObject &object)
{
    return object.kind.contains(QLatin1String("PROCEDURE"));
}

/// Types first; a table needs functions more often than the other way round.
int rankOf(const KNScriptObject &object)
{
    return object.kind == QLatin1String("TYPE") ? 0
           : object.hasRows                     ? 1
           : isFunction(object)                 ? 2
           : isProcedure(object)                ? 4
                                                : 3;
}

} // namespace

QList<KNScriptObject> MSSQLDatabaseScripter::objects(KNError *error)
{
    QList<KNScriptObject> objects;
    const auto add = [&](const DatabaseResultSet &row) {
        const QString kind = row.stringForColumnIndex(3);
        if (!kind.contains(QLatin1String("TRIGGER"))) // a part of its table
            objects.append({kind, row.stringForColumnIndex(1), row.stringForColumnIndex(2),
                            kind == QLatin1String("USER_TABLE")});
    };
    *error = MSSQLCatalogReader::read(*m_details, QStringLiteral("List_ExportableDatabaseEntries"), {},
                                      ScripterDomain, add);
    const auto addTypes = [&](const char *kind, const char *filter) {
        const QMap<QString, QString> values = {
            {QStringLiteral("EXTRA_WHERE_CLAUSE"), QString::fromLatin1(filter)}};
        if (!*error)
            *error = MSSQLCatalogReader::read(
                *m_details, QStringLiteral("List_UserTypesByTypeInDatabase_NonSystem"), values,
                ScripterDomain, [&](const DatabaseResultSet &row) {
                    objects.append({QString::fromLatin1(kind), row.stringForColumnIndex(0),
                                    row.stringForColumnIndex(1)});
                });
    };
    addTypes("TYPE", "AND is_table_type = 0");
    addTypes("TABLE_TYPE", "AND is_table_type = 1");
    return *error ? QList<KNScriptObject>() : objects;
}

QMultiHash<QString, QString> MSSQLDatabaseScripter::dependencies(KNError *error) const
{
    QMultiHash<QString, QString> dependencies;
    *error = MSSQLCatalogReader::read(
        *m_details, QStringLiteral("List_ObjectDependencies"), {}, ScripterDomain,
        [&](const DatabaseResultSet &row) {
            const KNScriptObject from{{}, row.stringForColumnIndex(0), row.stringForColumnIndex(1)};
            const KNScriptObject to{{}, row.stringForColumnIndex(2), row.stringForColumnIndex(3)};
            dependencies.insert(from.displayName(), to.displayName());
        });
    return dependencies;
}

QList<KNScriptObject> MSSQLDatabaseScripter::ordered(const QList<KNScriptObject> &objects,
                                                     const QMultiHash<QString, QString> &dependencies)
{
    QList<KNScriptObject> ranked = objects;
    std::stable_sort(
        ranked.begin(), ranked.end(),
        [](const KNScriptObject &left, const KNScriptObject &right) { return rankOf(left) < rankOf(right); });
    DependencyOrder order(ranked, dependencies);
    for (const KNScriptObject &object : std::as_const(ranked))
        order.visit(object);
    return order.ordered();
}

QString MSSQLDatabaseScripter::creationScript(const KNScriptObject &object, KNError *error) const
{
    const QString &schema = object.schema;
    const QString &name = object.name;
    KNQueryReport report;
    MSSQLScriptSubject subject{QStringLiteral("VIEW"), schema, name, m_details};
    QString text;
    if (object.hasRows) {
        subject.kind = QStringLiteral("TABLE");
        text = MSSQLScriptCreateTableQueryLoader::creationQueryForTable(name, schema, *m_details, &report);
    } else if (isFunction(object)) {
        subject.kind = QStringLiteral("FUNCTION");
        text =
            MSSQLScriptCreateFunctionQueryLoader::creationQueryForFunction(name, schema, *m_details, &report);
    } else if (isProcedure(object)) {
        subject.kind = QStringLiteral("PROCEDURE");
        text = MSSQLScriptCreateStoredProcedureQueryLoader::creationQueryForStoredProcedure(
            name, schema, *m_details, &report);
    } else if (object.kind == QLatin1String("TYPE")) {
        subject.kind = QStringLiteral("TYPE");
        text = MSSQLScriptCreateTypeQueryLoader::creationQueryForType(name, schema, 0, *m_details, &report);
    } else {
        text = MSSQLScriptCreateViewQueryLoader::creationQueryForView(name, schema, *m_details, &report);
    }
    if (text.isNull()) {
        *error = report.failure;
        return {};
    }
    subject.review(&text, &report);
    return report.guardedText(text);
}

QList<MSSQLDatabaseScripter::Scripted> MSSQLDatabaseScripter::script(const QList<KNScriptObject> &objects,
                                                                     KNError *error) const
{
    QList<Scripted> scripted;
    for (const KNScriptObject &object : objects) {
        const QString text = creationScript(object, error);
        if (*error)
            return {};
        scripted.append({object, MSSQLScriptBatches(text).all()});
    }
    return scripted;
}

KNScriptPart MSSQLDatabaseScripter::rowsPart(const KNScriptObject &table) const
{
    return {table.displayName(), table.displayName(),
            [details = m_details, table](QIODevice &device, const KNRowStream::IsCancelled &isCancelled) {
                return MSSQLTableRowsScript(*details, table.schema, table.name).write(device, isCancelled);
            }};
}

/// Foreign keys go first, and each object before those that it depends on.
QList<KNScriptPart> MSSQLDatabaseScripter::dropParts(const QList<Scripted> &scripted)
{
    const QString file = QStringLiteral("_Drops");
    QList<KNScriptPart> parts;
    for (const Scripted &each : scripted) {
        for (const MSSQLScriptBatches::Batch &batch : each.batches) {
            if (batch.kind == MSSQLScriptBatches::Kind::ForeignKey && !batch.name.isEmpty())
                parts.append(textPart(file, each.object,
                                      MSSQLScriptConditions::dropForeignKey(each.object, batch.name)));
        }
    }
    for (auto each = scripted.crbegin(); each != scripted.crend(); ++each)
        parts.append(textPart(file, each->object, MSSQLScriptConditions::drop(each->object)));
    return parts;
}

QList<KNScriptPart> MSSQLDatabaseScripter::schemaParts(const QList<Scripted> &scripted)
{
    QSet<QString> schemas = {QStringLiteral("dbo")};
    QList<KNScriptPart> parts;
    for (const Scripted &each : scripted) {
        const QString schema = each.object.schema;
        if (schemas.contains(schema))
            continue;
        schemas.insert(schema);
        parts.append(
            textPart(QStringLiteral("_Schemas"), each.object, MSSQLScriptConditions::createSchema(schema)));
    }
    return parts;
}

QList<KNScriptPart> MSSQLDatabaseScripter::serverParts(const QList<Scripted> &scripted,
                                                       const KNScriptOptions &options) const
{
    const MSSQLScriptConditions conditions(options);
    QList<KNScriptPart> parts;
    const auto addBatches = [&](MSSQLScriptBatches::Kind kind, bool isWanted, const char *suffix) {
        for (const Scripted &each : scripted) {
            QString text;
            for (const MSSQLScriptBatches::Batch &batch : each.batches) {
                if (isWanted && batch.kind == kind)
                    text += conditions.script(each.object, batch);
            }
            if (!text.isEmpty())
                parts.append(textPart(each.object.displayName() + QLatin1String(suffix), each.object, text));
        }
    };
    const bool hasSchema = options.schema;
    if (hasSchema && options.drops)
        parts += dropParts(scripted);
    if (hasSchema)
        parts += schemaParts(scripted);
    addBatches(MSSQLScriptBatches::Kind::Object, hasSchema, "");
    for (const Scripted &each : scripted) {
        if (options.data && each.object.hasRows)
            parts.append(rowsPart(each.object));
    }
    addBatches(MSSQLScriptBatches::Kind::Index, hasSchema && options.indexes, "");
    addBatches(MSSQLScriptBatches::Kind::ForeignKey, hasSchema && options.constraints, ".ForeignKeys");
    addBatches(MSSQLScriptBatches::Kind::Trigger, hasSchema && options.triggers, ".Triggers");
    return parts;
}

QList<KNScriptPart> MSSQLDatabaseScripter::mySQLParts(const QList<KNScriptObject> &objects,
                                                      const KNScriptOptions &options) const
{
    QList<KNScriptPart> parts;
    for (const KNScriptObject &object : objects) {
        if (!object.hasRows)
            continue;
        parts.append({object.displayName(), object.displayName(),
                      [details = m_details, object, options](QIODevice &device,
                                                             const KNRowStream::IsCancelled &isCancelled) {
                          KNQueryReport report;
                          MSSQLScriptTableAsMySQLQueryLoader::writeCreationQueryForTable(
                              object.name, object.schema, options.schema && options.drops, options.schema,
                              options.data, *details, device, &report, isCancelled);
                          device.write("\r\n\r\n");
                          return report.failure;
                      }});
    }
    return parts;
}

QList<KNScriptPart> MSSQLDatabaseScripter::parts(const QList<KNScriptObject> &objects,
                                                 const KNScriptOptions &options, KNError *error)
{
    *error = KNError();
    if (options.language == KNScriptOptions::Language::MySQL)
        return mySQLParts(objects, options);
    const auto named = dependencies(error);
    if (*error)
        return {};
    QList<KNScriptObject> scriptable;
    std::copy_if(objects.begin(), objects.end(), std::back_inserter(scriptable), isScriptable);
    const QList<Scripted> scripted = script(ordered(scriptable, named), error);
    return *error ? QList<KNScriptPart>() : missingParts(objects) + serverParts(scripted, options);
}
