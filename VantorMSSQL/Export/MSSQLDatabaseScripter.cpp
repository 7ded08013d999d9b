#include "Export/MSSQLDatabaseScripter.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Export/KNScriptTarget.h"
#include "Export/MSSQLRowOrder.h"
#include "Export/MSSQLScriptKind.h"
#include "Export/MSSQLScriptStub.h"
#include "Export/MSSQLTableRowsCsv.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"

#include <algorithm>

namespace {

constexpr auto ScripterDomain = "mssql.export.objects";

} // namespace

QList<KNScriptObject> MSSQLDatabaseScripter::objects(KNError *error)
{
    QList<KNScriptObject> objects;
    const auto add = [&](const DatabaseResultSet &row) {
        const QString kind = row.stringForColumnIndex(3);
        if (!kind.contains(QLatin1String("TRIGGER"))) // a part of its table
            objects.append({kind, row.stringForColumnIndex(1), row.stringForColumnIndex(2),
                            kind == QLatin1String("USER_TABLE"), MSSQLScriptKind::groupTitle(kind)});
    };
    *error = MSSQLCatalogReader::read(*m_details, QStringLiteral("List_ExportableDatabaseEntries"), {},
                                      ScripterDomain, add);
    if (!*error)
        *error = addTypes("TYPE", "AND is_table_type = 0", &objects);
    if (!*error)
        *error = addTypes("TABLE_TYPE", "AND is_table_type = 1", &objects);
    if (*error)
        return {};
    std::stable_sort(objects.begin(), objects.end(),
                     [](const KNScriptObject &left, const KNScriptObject &right) {
                         return MSSQLScriptKind::rankOf(left) < MSSQLScriptKind::rankOf(right);
                     });
    return objects;
}

KNError MSSQLDatabaseScripter::addTypes(const char *kind, const char *filter,
                                        QList<KNScriptObject> *objects) const
{
    const QString name = QString::fromLatin1(kind);
    return MSSQLCatalogReader::read(*m_details, QStringLiteral("List_UserTypesByTypeInDatabase_NonSystem"),
                                    {{QStringLiteral("EXTRA_WHERE_CLAUSE"), QString::fromLatin1(filter)}},
                                    ScripterDomain, [&](const DatabaseResultSet &row) {
                                        objects->append({name, row.stringForColumnIndex(0),
                                                         row.stringForColumnIndex(1), false,
                                                         MSSQLScriptKind::groupTitle(name)});
                                    });
}

MSSQLScriptOrder MSSQLDatabaseScripter::orderOf(const QList<KNScriptObject> &objects, KNError *error) const
{
    MSSQLScriptOrder::Dependencies dependencies;
    QSet<MSSQLScriptOrder::Reference> bound;
    *error = MSSQLCatalogReader::read(
        *m_details, QStringLiteral("List_ObjectDependencies"), {}, ScripterDomain,
        [&](const DatabaseResultSet &row) {
            const KNScriptObject from{{}, row.stringForColumnIndex(0), row.stringForColumnIndex(1)};
            const KNScriptObject to{{}, row.stringForColumnIndex(2), row.stringForColumnIndex(3)};
            dependencies.insert(from.displayName(), to.displayName());
            constexpr qsizetype IsBound = 4;
            if (row.numberForColumnIndex(IsBound).toBool())
                bound.insert({from.displayName(), to.displayName()});
        });
    return {objects, dependencies, bound};
}

KNError MSSQLDatabaseScripter::readScripts(const MSSQLScriptOrder &order, const KNScriptControl &control,
                                           MSSQLScriptStore *scripts) const
{
    KNError error;
    for (const KNScriptObject &object : order.objects()) {
        if (control.wasCancelled())
            return {};
        control.reportObject(object.displayName(), scripts->entries().size(), order.objects().size());
        MSSQLObjectScript script = MSSQLObjectScript::read(object, m_details, &error);
        if (!error && order.late().contains(object.displayName()) && MSSQLScriptStub::isPossible(object))
            script.stub = MSSQLScriptStub::text(object, *m_details, &error);
        if (!error)
            error = scripts->append(script);
        if (error)
            return error;
    }
    return {};
}

MSSQLScriptParts::Additions MSSQLDatabaseScripter::additions(const KNScriptOptions &options,
                                                             KNError *error) const
{
    const auto read = [&](bool isWanted, const char *title) {
        const auto statements =
            isWanted && !*error ? std::make_shared<MSSQLScriptStatements>() : MSSQLScriptParts::Statements();
        if (statements)
            *error = statements->read(*m_details, title, options);
        return statements;
    };
    MSSQLScriptParts::Additions additions;
    additions.viewTriggers = read(options.triggers, "List_ViewTriggerStatements");
    additions.extendedProperties = read(options.extendedProperties, "List_ExtendedPropertyStatements");
    additions.permissions = read(options.permissions, "List_PermissionStatements");
    return additions;
}

QList<KNScriptPart> MSSQLDatabaseScripter::rowParts(const QList<KNScriptObject> &objects, bool asCsv) const
{
    QList<KNScriptPart> parts;
    for (const KNScriptObject &table : objects) {
        if (!table.hasRows)
            continue;
        if (asCsv) {
            parts += csvParts(table);
            continue;
        }
        parts.append(
            {table.displayName(), table.displayName(),
             [details = m_details, table](QIODevice &device, const KNScriptControl &control) {
                 return MSSQLTableRowsScript(*details, table.schema, table.name).write(device, control);
             }});
    }
    return parts;
}

QList<KNScriptPart> MSSQLDatabaseScripter::csvParts(const KNScriptObject &table) const
{
    const QString file = table.displayName() + QLatin1String(".csv");
    const auto writeRows = [details = m_details, table](QIODevice &device, const KNScriptControl &control) {
        return MSSQLTableRowsCsv(*details, table.schema, table.name).writeRows(device, control);
    };
    const auto writeLoading = [details = m_details, table, file](QIODevice &device, const KNScriptControl &) {
        return MSSQLTableRowsCsv(*details, table.schema, table.name)
            .writeLoading(KNScriptTarget::safeName(file), device);
    };
    return {{file, table.displayName(), writeRows, true},
            {table.displayName() + QLatin1String(".Load"), table.displayName(), writeLoading}};
}

QList<KNScriptPart> MSSQLDatabaseScripter::orderedRowParts(const QList<KNScriptObject> &objects, bool asCsv,
                                                           KNError *error) const
{
    QList<KNScriptObject> tables;
    std::copy_if(objects.begin(), objects.end(), std::back_inserter(tables),
                 [](const KNScriptObject &object) { return object.hasRows; });
    const MSSQLRowOrder order = MSSQLRowOrder::read(tables, *m_details, error);
    if (*error)
        return {};
    QList<KNScriptPart> parts = rowParts(order.tables(), asCsv);
    if (!order.switchingOff().isNull()) {
        const KNScriptObject &first = order.tables().first();
        parts.prepend(MSSQLScriptParts::textPart(QStringLiteral("_KeysOff"), first, order.switchingOff()));
        parts.append(MSSQLScriptParts::textPart(QStringLiteral("_KeysOn"), first, order.switchingOn()));
    }
    return parts;
}

QList<KNScriptPart> MSSQLDatabaseScripter::mySQLParts(const QList<KNScriptObject> &objects,
                                                      const KNScriptOptions &options) const
{
    QList<KNScriptPart> parts;
    for (const KNScriptObject &object : objects) {
        if (!object.hasRows)
            continue;
        const auto write = [details = m_details, object, options](QIODevice &device,
                                                                  const KNScriptControl &control) {
            KNQueryReport report;
            MSSQLScriptTableAsMySQLQueryLoader::writeCreationQueryForTable(
                object.name, object.schema, options.schema && options.drops, options.schema, options.data,
                *details, device, &report, control);
            device.write("\r\n\r\n");
            return report.failure;
        };
        parts.append({object.displayName(), object.displayName(), write});
    }
    return parts;
}

QList<KNScriptPart> MSSQLDatabaseScripter::parts(const QList<KNScriptObject> &objects,
                                                 const KNScriptOptions &options,
                                                 const KNScriptControl &control, KNError *error)
{
    *error = KNError();
    if (options.language == KNScriptOptions::Language::MySQL)
        return mySQLParts(objects, options);
    if (!options.schema)
        return orderedRowParts(objects, options.csvRows, error);
    QList<KNScriptObject> scriptable;
    std::copy_if(objects.begin(), objects.end(), std::back_inserter(scriptable),
                 MSSQLScriptKind::isScriptable);
    const MSSQLScriptOrder order = orderOf(scriptable, error);
    const MSSQLScriptParts::Additions added =
        *error ? MSSQLScriptParts::Additions() : additions(options, error);
    if (*error)
        return {};
    const auto made = std::make_shared<MSSQLScriptStore>();
    *error = readScripts(order, control, made.get());
    if (*error || control.wasCancelled())
        return {};
    const QList<KNScriptPart> rows =
        options.data ? rowParts(order.objects(), options.csvRows) : QList<KNScriptPart>();
    return MSSQLScriptParts::missing(objects) + MSSQLScriptParts::unordered(order) +
           MSSQLScriptParts(made, added, options).all(rows);
}
