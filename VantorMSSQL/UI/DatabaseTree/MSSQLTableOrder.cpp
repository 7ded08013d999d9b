#include "UI/DatabaseTree/MSSQLTableOrder.h"

#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

#include <QHash>

#include <algorithm>

namespace {

const MSSQLDatabaseTreeEntryDatabaseTable *tableOf(const KNDatabaseTreeEntry::Ptr &entry)
{
    return dynamic_cast<const MSSQLDatabaseTreeEntryDatabaseTable *>(entry.get());
}

/// Negative if the left schema sorts first. `preferred` is null if no schema is preferred.
int compareSchemas(const QString &left, const QString &right, const QString &preferred)
{
    const int order = MSSQLTreeCatalog::compareNames(left, right);
    if (order == 0 || preferred.isNull())
        return order;
    if (MSSQLTreeCatalog::compareNames(left, preferred) == 0)
        return -1;
    return MSSQLTreeCatalog::compareNames(right, preferred) == 0 ? 1 : order;
}

/// The rank of each schema in a list; schemas that differ in case only share a rank.
QHash<QString, int> schemaRanks(const KNDatabaseTreeEntry::List &entries, const QString &preferred)
{
    QHash<QString, int> ranks;
    const QString *last = nullptr; // tables of a schema are mostly adjacent
    for (const auto &entry : entries) {
        const auto *table = tableOf(entry);
        if (!table || (last && *last == table->schema()))
            continue;
        ranks.insert(table->schema(), 0);
        last = &table->schema();
    }
    QStringList schemas = ranks.keys();
    std::sort(schemas.begin(), schemas.end(), [&](const QString &left, const QString &right) {
        return compareSchemas(left, right, preferred) < 0;
    });
    int rank = 0;
    for (qsizetype index = 0; index < schemas.size(); ++index) {
        if (index == 0 || compareSchemas(schemas[index - 1], schemas[index], preferred) != 0)
            ++rank;
        ranks[schemas[index]] = rank;
    }
    return ranks;
}

} // namespace

/// Schemas in another letter case follow the default one, but are not sorted first without it.
bool MSSQLTableOrder::prefersDefault(const List &entries) const
{
    return !m_defaultSchema.isEmpty() && std::any_of(entries.begin(), entries.end(), [&](const auto &entry) {
        const auto *table = tableOf(entry);
        return table && table->schema() == m_defaultSchema;
    });
}

MSSQLTableOrder::List MSSQLTableOrder::sorted(const List &entries) const
{
    const QString preferred = prefersDefault(entries) ? m_defaultSchema : QString();
    const QHash<QString, int> ranks = schemaRanks(entries, preferred);
    struct Keyed
    {
        int rank;
        const MSSQLDatabaseTreeEntryDatabaseTable *table;
        const KNDatabaseTreeEntry::Ptr *entry;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(entries.size());
    for (const auto &entry : entries) {
        const auto *table = tableOf(entry);
        const bool isLikeLast =
            table && !keyed.empty() && keyed.back().table && keyed.back().table->schema() == table->schema();
        const int rank = isLikeLast ? keyed.back().rank : (table ? ranks.value(table->schema()) : 0);
        keyed.push_back({rank, table, &entry});
    }
    const auto less = [](const Keyed &left, const Keyed &right) {
        if (left.rank != right.rank || !left.table || !right.table)
            return left.rank < right.rank;
        return left.table->tableName() < right.table->tableName();
    };
    if (std::is_sorted(keyed.begin(), keyed.end(), less))
        return entries;
    std::stable_sort(keyed.begin(), keyed.end(), less);
    List sortedEntries;
    sortedEntries.reserve(keyed.size());
    for (const Keyed &key : keyed)
        sortedEntries.push_back(*key.entry);
    return sortedEntries;
}

MSSQLTableOrder::List MSSQLTableOrder::inserted(const List &sortedEntries,
                                                const KNDatabaseTreeEntry::Ptr &entry) const
{
    List entries;
    entries.reserve(sortedEntries.size() + 1);
    entries = sortedEntries;
    const bool wasPreferred = prefersDefault(sortedEntries);
    if (!wasPreferred && prefersDefault({entry})) {
        entries.push_back(entry);
        return sorted(entries);
    }
    const QString preferred = wasPreferred ? m_defaultSchema : QString();
    const auto less = [&](const KNDatabaseTreeEntry::Ptr &left, const KNDatabaseTreeEntry::Ptr &right) {
        const auto *leftTable = tableOf(left);
        const auto *rightTable = tableOf(right);
        if (!leftTable || !rightTable)
            return !leftTable && rightTable;
        const int order = compareSchemas(leftTable->schema(), rightTable->schema(), preferred);
        return order != 0 ? order < 0 : leftTable->tableName() < rightTable->tableName();
    };
    entries.insert(std::upper_bound(entries.begin(), entries.end(), entry, less), entry);
    return entries;
}
