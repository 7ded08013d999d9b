#include "Autocomplete/MSSQLCompletionLoader.h"

#include "Catalog/MSSQLCatalogReader.h"

#include <deque>
#include <unordered_set>

namespace {

using Entry = KNDatabaseAutocompleteEntry;
using Kind = KNCompletionCatalog::Kind;
using Object = KNCompletionCatalog::Object;

constexpr auto ErrorDomain = "mssql.autocomplete.objects";
constexpr qsizetype MaximumNames = 1'000'000; ///< of one query

/// Owns the entries of routines and system objects.
struct Routines
{
    std::deque<Entry> entries;
    std::unordered_set<QString> types;
    QHash<QString, Entry *> byPath; ///< by schema and name

    Entry &addMember(Entry *owner, const QString &name, Entry::Kind kind, const QString &type)
    {
        Entry &member = entries.emplace_back(name, kind, &*types.insert(type).first);
        member.setEntryParent(owner);
        owner->addChild(&member);
        return member;
    }
};

QString pathKey(const QString &schema, const QString &name)
{
    return schema + u'\n' + name;
}

/// The kind of an object with this type code of the catalog.
Kind kindOfType(const QString &type)
{
    static const QHash<QString, Kind> kinds = {
        {QStringLiteral("V"), Kind::View},
        {QStringLiteral("P"), Kind::Procedure},
        {QStringLiteral("PC"), Kind::Procedure},
        {QStringLiteral("X"), Kind::Procedure},
        {QStringLiteral("FN"), Kind::ScalarFunction},
        {QStringLiteral("FS"), Kind::ScalarFunction},
        {QStringLiteral("IF"), Kind::TableFunction},
        {QStringLiteral("TF"), Kind::TableFunction},
        {QStringLiteral("FT"), Kind::TableFunction},
        {QStringLiteral("SN"), Kind::Synonym},
        {QStringLiteral("SO"), Kind::Sequence},
    };
    return kinds.value(type.trimmed(), Kind::Type);
}

class Loader
{
public:
    Loader(const MSSQLDatabaseConnectionDetails &details, KNCompletionCatalog *catalog)
        : m_details(details)
        , m_catalog(catalog)
    {
    }

    void load()
    {
        readMembers();
        readObjects();
        readForeignKeys();
        readNames("List_Schemas", &m_catalog->schemas);
        readNames("General_ListDatabases", &m_catalog->databases);
        m_catalog->owners.append(m_routines);
    }

    KNError loadSystemObjects()
    {
        m_catalog->owners.append(m_routines);
        return each("List_SystemEntriesForAutocomplete", [this](const Row &row) {
            const QString schema = row.stringForColumnIndex(0);
            const QString name = row.stringForColumnIndex(1);
            Entry *&object = m_routines->byPath[pathKey(schema, name)];
            if (!object) {
                object = &m_routines->entries.emplace_back(name, Entry::Table);
                m_catalog->objects.append({schema, name, kindOfType(row.stringForColumnIndex(2)), object});
            }
            if (row.objectForColumnIndex(3).isNull())
                return;
            m_routines
                ->addMember(object, row.stringForColumnIndex(3), Entry::Column, row.stringForColumnIndex(4))
                .addTrait(row.numberForColumnIndex(5).toBool() ? Entry::Nullable : Entry::NotNull);
        });
    }

private:
    using Row = DatabaseResultSet;

    template <typename Read>
    KNError each(const char *title, Read read)
    {
        qsizetype count = 0;
        return MSSQLCatalogReader::read(m_details, QString::fromLatin1(title), {}, ErrorDomain,
                                        [&](const Row &row) {
                                            if (++count <= MaximumNames)
                                                read(row);
                                        });
    }

    void readMembers()
    {
        each("List_MembersForAutocomplete", [this](const Row &row) {
            const QString schema = row.stringForColumnIndex(0);
            const QString name = row.stringForColumnIndex(1);
            Entry *&routine = m_routines->byPath[pathKey(schema, name)];
            if (!routine)
                routine = &m_routines->entries.emplace_back(name, Entry::Routine);
            const bool isParameter = row.numberForColumnIndex(4).toInt64() == 1;
            m_routines->addMember(routine, row.stringForColumnIndex(2),
                                  isParameter ? Entry::Parameter : Entry::Column,
                                  row.stringForColumnIndex(3));
        });
    }

    void readObjects()
    {
        QHash<QString, qsizetype> tables; // views are among them, with their columns
        for (qsizetype index = 0; index < m_catalog->objects.size(); ++index)
            tables.insert(pathKey(m_catalog->objects[index].schema, m_catalog->objects[index].name), index);
        each("List_ObjectsForAutocomplete", [&](const Row &row) {
            const QString schema = row.stringForColumnIndex(0);
            const QString name = row.stringForColumnIndex(1);
            const Kind kind = kindOfType(row.stringForColumnIndex(2));
            const QString key = pathKey(schema, name);
            const qsizetype known = kind == Kind::View ? tables.value(key, -1) : -1;
            if (known >= 0)
                m_catalog->objects[known].kind = kind;
            else
                m_catalog->objects.append({schema, name, kind, m_routines->byPath.value(key)});
        });
    }

    void readForeignKeys()
    {
        QString lastKey;
        each("List_ForeignKeysForAutocomplete", [&](const Row &row) {
            const QString schema = row.stringForColumnIndex(0);
            const QString key = pathKey(schema, row.stringForColumnIndex(6));
            if (key != lastKey || m_catalog->foreignKeys.isEmpty()) {
                m_catalog->foreignKeys.append({{schema, row.stringForColumnIndex(1)},
                                               {},
                                               {row.stringForColumnIndex(3), row.stringForColumnIndex(4)},
                                               {}});
            }
            lastKey = key;
            m_catalog->foreignKeys.last().columns.append(row.stringForColumnIndex(2));
            m_catalog->foreignKeys.last().referencedColumns.append(row.stringForColumnIndex(5));
        });
    }

    void readNames(const char *title, QStringList *names)
    {
        QStringList found;
        each(title, [&](const Row &row) { found.append(row.stringForColumnIndex(0)); });
        if (!found.isEmpty())
            *names = found;
    }

    const MSSQLDatabaseConnectionDetails &m_details;
    KNCompletionCatalog *const m_catalog;
    const std::shared_ptr<Routines> m_routines = std::make_shared<Routines>();
};

} // namespace

MSSQLCompletionLoader::Catalog
MSSQLCompletionLoader::tables(const std::shared_ptr<const MSSQLAutocompleteEntires> &entires,
                              const QString &defaultSchema)
{
    auto catalog = std::make_shared<KNCompletionCatalog>();
    catalog->owners.append(entires);
    catalog->defaultSchema = defaultSchema.isEmpty() ? QString() : defaultSchema;
    catalog->schemas = entires->schemaNames();
    catalog->systemSchemas = {QStringLiteral("sys"), QStringLiteral("INFORMATION_SCHEMA")};
    catalog->columns = entires->columnsByName();
    catalog->objects.reserve(entires->tables().size());
    for (const Entry *table : entires->tables())
        catalog->objects.append({table->entryParent()->entryName(), table->entryName(), Kind::Table, table});
    return catalog;
}

void MSSQLCompletionLoader::addObjects(const MSSQLDatabaseConnectionDetails &details,
                                       KNCompletionCatalog *catalog)
{
    Loader(details, catalog).load();
}

MSSQLCompletionLoader::Catalog
MSSQLCompletionLoader::systemObjects(const MSSQLDatabaseConnectionDetails &details)
{
    auto catalog = std::make_shared<KNCompletionCatalog>();
    if (Loader(details, catalog.get()).loadSystemObjects())
        return nullptr;
    catalog->createIndex();
    return catalog;
}
