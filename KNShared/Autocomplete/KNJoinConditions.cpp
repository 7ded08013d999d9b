#include "Autocomplete/KNJoinConditions.h"

namespace {

using ForeignKey = KNCompletionCatalog::ForeignKey;
using Object = KNCompletionCatalog::Object;
using Quote = std::function<QString(const QString &)>;

bool isTable(const Object &object, const QStringList &path)
{
    return object.schema.compare(path.value(0), Qt::CaseInsensitive) == 0 &&
           object.name.compare(path.value(1), Qt::CaseInsensitive) == 0;
}

QString column(const KNSQLSource &source, const QString &name, const Quote &quotedName)
{
    const auto quoted = [&](const QString &text) { return quotedName ? quotedName(text) : text; };
    return quoted(source.visibleName()) + u'.' + quoted(name);
}

QString condition(const KNSQLSource &a, const QStringList &ofA, const KNSQLSource &b, const QStringList &ofB,
                  const Quote &quotedName)
{
    QStringList parts;
    for (qsizetype index = 0; index < std::min(ofA.size(), ofB.size()); ++index)
        parts.append(column(a, ofA[index], quotedName) + QStringLiteral(" = ") +
                     column(b, ofB[index], quotedName));
    return parts.join(QStringLiteral(" AND "));
}

} // namespace

QStringList KNJoinConditions(const KNSQLScope &scope, const KNSourceColumns &columns,
                             const KNCompletionCatalog *catalog, const Quote &quotedName)
{
    QStringList conditions;
    if (scope.innerSources < 2)
        return conditions;
    const qsizetype joined = scope.joinedSource >= 0 ? scope.joinedSource : scope.innerSources - 1;
    const KNSQLSource &last = scope.sources[joined];
    const Object *const table = columns.object(last.path);
    for (qsizetype index = joined - 1; index >= 0 && catalog && table; --index) {
        const KNSQLSource &other = scope.sources[index];
        const Object *const referenced = columns.object(other.path);
        for (const ForeignKey &key : catalog->foreignKeys) {
            if (!referenced)
                break;
            if (isTable(*table, key.table) && isTable(*referenced, key.referencedTable))
                conditions.append(condition(last, key.columns, other, key.referencedColumns, quotedName));
            if (isTable(*table, key.referencedTable) && isTable(*referenced, key.table))
                conditions.append(condition(last, key.referencedColumns, other, key.columns, quotedName));
        }
    }
    QHash<QString, KNSourceColumn> own; // by name in lower case
    for (const KNSourceColumn &mine : columns.of(last))
        own.insert(mine.name.toLower(), mine);
    for (qsizetype index = joined - 1; index >= 0; --index) {
        const KNSQLSource &other = scope.sources[index];
        for (const KNSourceColumn &theirs : columns.of(other)) {
            const auto mine = own.constFind(theirs.name.toLower());
            if (mine != own.constEnd() && mine->type == theirs.type)
                conditions.append(condition(last, {mine->name}, other, {theirs.name}, quotedName));
        }
    }
    conditions.removeDuplicates();
    return conditions;
}

QList<QStringList> KNRelatedTables(const KNSQLScope &scope, const KNCompletionCatalog &catalog,
                                   const KNSourceColumns &columns)
{
    QList<QStringList> related;
    // A table that the query reads already is joined again only by a key that references its own table.
    const auto isRead = [&](const QStringList &path) {
        for (qsizetype index = 0; index < scope.innerSources; ++index) {
            const Object *const table = columns.object(scope.sources[index].path);
            if (table && isTable(*table, path))
                return true;
        }
        return false;
    };
    const auto add = [&](const QStringList &path, const ForeignKey &key) {
        if (key.table == key.referencedTable || !isRead(path))
            related.append(path);
    };
    for (qsizetype index = 0; index < scope.innerSources; ++index) {
        const Object *const table = columns.object(scope.sources[index].path);
        for (const ForeignKey &key : catalog.foreignKeys) {
            if (table && isTable(*table, key.table))
                add(key.referencedTable, key);
            else if (table && isTable(*table, key.referencedTable))
                add(key.table, key);
        }
    }
    return related;
}
