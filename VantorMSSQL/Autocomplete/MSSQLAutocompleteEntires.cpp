#include "Autocomplete/MSSQLAutocompleteEntires.h"

#include <QCollator>

#include <algorithm>
#include <numeric>

namespace {

using Entry = KNDatabaseAutocompleteEntry;

bool isSameName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

/// Sorts by the user's locale without regard to case, and drops elements with the same name.
template <typename Element, typename NameOf>
QList<Element> sortedForUser(const QList<Element> &elements, NameOf nameOf)
{
    const QCollator collator;
    std::vector<QCollatorSortKey> keys;
    QList<Element> distinct;
    QSet<QString> seen;
    seen.reserve(elements.size());
    for (const Element &element : elements) {
        const QString &name = nameOf(element);
        const qsizetype known = seen.size();
        seen.insert(name);
        if (seen.size() == known)
            continue;
        keys.push_back(collator.sortKey(name.toLower()));
        distinct.append(element);
    }
    // Keys are expensive to move.
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    const auto elementAt = [&](std::size_t index) -> const Element & {
        return distinct.at(static_cast<qsizetype>(index));
    };
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        const int comparison = keys[a].compare(keys[b]);
        return comparison == 0 ? nameOf(elementAt(a)) < nameOf(elementAt(b)) : comparison < 0;
    });
    QList<Element> sorted;
    sorted.reserve(distinct.size());
    for (const std::size_t index : order)
        sorted.append(elementAt(index));
    return sorted;
}

Entry::List sortedEntries(const Entry::List &entries)
{
    return sortedForUser(entries, [](const Entry *entry) -> const QString & { return entry->entryName(); });
}

QStringList namesInOrder(const Entry::List &entries)
{
    QStringList names;
    names.reserve(entries.size());
    for (const Entry *entry : entries)
        names.append(entry->entryName());
    return names;
}

bool hasSameKeys(const MSSQLAutocompleteEntires::Lookup &a, const MSSQLAutocompleteEntires::Lookup &b)
{
    const auto isInB = [&b](const QString &key) { return b.contains(key); };
    return a.size() == b.size() && std::all_of(a.keyBegin(), a.keyEnd(), isInB);
}

} // namespace

Entry &MSSQLAutocompleteEntires::addColumn(const QString &schema, const QString &table, const QString &column,
                                           const QString &type)
{
    const bool isNewSchema = m_schemas.isEmpty() || !isSameName(m_schemas.last()->entryName(), schema);
    const bool isNewTable =
        isNewSchema || m_tables.isEmpty() || !isSameName(m_tables.last()->entryName(), table);
    if (isNewTable)
        m_tables.append(newEntry(table, Entry::Table));
    if (isNewSchema)
        m_schemas.append(newEntry(schema, Entry::Schema));
    if (isNewTable) {
        m_schemas.last()->addChild(m_tables.last());
        m_tables.last()->setEntryParent(m_schemas.last());
    }
    Entry *const entry = newEntry(column, Entry::Column, &*m_types.insert(type).first);
    entry->setEntryParent(m_tables.last());
    m_tables.last()->addChild(entry);
    m_columns.append(entry);
    return *entry;
}

Entry *MSSQLAutocompleteEntires::newEntry(const QString &name, Entry::Kind kind, const QString *details)
{
    return &m_entries.emplace_back(*m_names.insert(name), kind, details);
}

void MSSQLAutocompleteEntires::createCache(const QString &defaultSchema)
{
    m_names = {};
    for (List *const list : {&m_schemas, &m_tables, &m_columns})
        list->squeeze();
    m_cachedSchemaNames = namesInOrder(sortedEntries(m_schemas));
    m_cachedTableNames = namesInOrder(sortedEntries(m_tables));
    m_columnsByName = sortedEntries(m_columns);
    for (Entry *const table : std::as_const(m_tables)) {
        table->squeeze();
        const QString &schema = table->entryParent()->entryName();
        addCachedEntries(table->entryChildren(), schema + u'.' + table->entryName());
        if (defaultSchema.isNull() || isSameName(defaultSchema, schema))
            addCachedEntries(table->entryChildren(), table->entryName());
    }
    for (Entry *const schema : std::as_const(m_schemas)) {
        schema->squeeze();
        addCachedEntries(schema->entryChildren(), schema->entryName());
    }
}

const QStringList &MSSQLAutocompleteEntires::allPossibleNamesForAlias() const
{
    std::call_once(m_possibleNamesOnce, [this] {
        m_cachedPossibleNamesForAlias =
            sortedForUser(QStringList(m_entriesLookupForTableAndOrSchema.keys()),
                          [](const QString &name) -> const QString & { return name; });
    });
    return m_cachedPossibleNamesForAlias;
}

void MSSQLAutocompleteEntires::addCachedEntries(const List &entries, const QString &parent)
{
    List &known = m_entriesLookupForTableAndOrSchema[parent.toLower()];
    if (known.isEmpty())
        known = entries; // shares the memory of the parent's own list
    else
        known.append(entries);
}

QStringList MSSQLAutocompleteEntires::columnNames() const
{
    return namesInOrder(m_columnsByName);
}

MSSQLAutocompleteEntires::List MSSQLAutocompleteEntires::columnsForTableAndOrSchema(const QString &name) const
{
    List columns = entriesForTableAndOrSchema(name);
    const auto isOther = [](const Entry *entry) { return entry->entryCompletionType() != Entry::Column; };
    if (std::any_of(columns.cbegin(), columns.cend(), isOther)) // a schema has the same name
        columns.removeIf(isOther);
    return columns;
}

MSSQLAutocompleteEntires::List MSSQLAutocompleteEntires::entriesForTableAndOrSchema(const QString &name) const
{
    return m_entriesLookupForTableAndOrSchema.value(name.toLower());
}

bool MSSQLAutocompleteEntires::isEqualTo(const MSSQLAutocompleteEntires &other) const
{
    return m_cachedSchemaNames == other.m_cachedSchemaNames &&
           m_cachedTableNames == other.m_cachedTableNames && columnNames() == other.columnNames() &&
           hasSameKeys(m_entriesLookupForTableAndOrSchema, other.m_entriesLookupForTableAndOrSchema);
}
