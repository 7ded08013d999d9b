#include "Autocomplete/MSSQLAutocompleteHelper.h"

#include "Autocomplete/MSSQLDialect.h"
#include "Catalog/MSSQLCatalogReader.h"
#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNNotificationCenter.h"
#include "Implementations/MSSQLErrorReport.h"
#include "Implementations/MSSQLQuoting.h"

namespace {

/// More columns than any database that people complete names in.
constexpr qsizetype MaximumColumns = 2'000'000;

/// Remembers the texts of types: most of many thousand columns have one of few types.
class ColumnTypeTexts
{
public:
    const QString &text(const QString &name, const KNValue &size, const KNValue &precision,
                        const KNValue &scale)
    {
        for (const Known &known : std::as_const(m_texts[name])) {
            if (known.size == size && known.precision == precision && known.scale == scale)
                return known.text;
        }
        QList<Known> &texts = m_texts[name];
        if (texts.size() == MostOfName)
            texts.clear();
        texts.append(
            {size, precision, scale, MSSQLQuoting::displayForColumnType(name, size, precision, scale)});
        return texts.last().text;
    }

private:
    static constexpr qsizetype MostOfName = 100;

    struct Known
    {
        KNValue size;
        KNValue precision;
        KNValue scale;
        QString text;
    };

    QHash<QString, QList<Known>> m_texts; ///< by name
};

} // namespace

MSSQLAutocompleteHelper *MSSQLAutocompleteHelper::sharedInstance()
{
    static auto *const helper =
        new MSSQLAutocompleteHelper; // never destroyed: work of the global queue may outlive main()
    return helper;
}

void MSSQLAutocompleteHelper::requestEntriesForDatabaseConnectionDetails(const VantorDBC &details,
                                                                         bool forceUpdate)
{
    if (details.database().isEmpty())
        return;
    if (!forceUpdate && entriesForDatabaseConnectionDetails(details)) {
        postUpdated(details.description());
        KNLogHelper::sharedInstance()->logMessage("Autocomplete already exists. Nothing to do.");
        return;
    }
    KNDispatch::globalQueue([this, settings = details.copy()] {
        doLoadAutocompleteDetails(static_cast<const MSSQLDatabaseConnectionDetails &>(*settings));
    });
}

void MSSQLAutocompleteHelper::doLoadAutocompleteDetails(const MSSQLDatabaseConnectionDetails &details)
{
    const QString description = details.description();
    Entires entires;
    if (const KNError error = load(details, &entires)) {
        MSSQLErrorReport::reportError(error.inDomain(QStringLiteral("mssql.autocomplete.load")),
                                      {{QStringLiteral("dbc"), description}});
        return;
    }
    // A set with the same names is not replaced, although types may have changed: completion shows these.
    const bool isReplaced = store(description, entires);
    m_catalogs.markOutdated(description, entires);
    if (isReplaced)
        postUpdated(description);
    KNLogHelper::sharedInstance()->logMessage("Finished autocomplete query block.");
}

KNError MSSQLAutocompleteHelper::load(const MSSQLDatabaseConnectionDetails &details, Entires *entires)
{
    const QString schema = MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(details);
    const QString query = MSSQLCatalogReader::text(details, QStringLiteral("List_EntriesForAutocomplete"));
    std::shared_ptr<MSSQLAutocompleteEntires> loaded;
    const KNError error = MSSQLCatalogReader::run(
        details, {query, nullptr, true}, [&](DatabaseResultSet *rows, const KNError &failure) {
            loaded = rows && !failure ? entiresFrom(*rows) : std::make_shared<MSSQLAutocompleteEntires>();
        });
    if (error)
        return error;
    // The lookup of the default schema gives an empty text if it failed.
    loaded->createCache(schema.isEmpty() ? QString() : schema);
    *entires = std::move(loaded);
    return error;
}

std::shared_ptr<MSSQLAutocompleteEntires> MSSQLAutocompleteHelper::entiresFrom(DatabaseResultSet &rows)
{
    const QStringList names = rows.columnNames();
    const auto position = [&](const char *name) { return names.indexOf(QLatin1String(name)); };
    const qsizetype schema = position("schemaName");
    const qsizetype table = position("tableName");
    const qsizetype column = position("columnName");
    const qsizetype type = position("columnType");
    const qsizetype size = position("dataSize");
    const qsizetype precision = position("precision");
    const qsizetype scale = position("scale");
    const qsizetype nullable = position("isNullable");
    const qsizetype key = position("isPrimaryKey");
    ColumnTypeTexts types;
    auto entires = std::make_shared<MSSQLAutocompleteEntires>();
    while (entires->columns().size() < MaximumColumns && rows.next()) {
        KNDatabaseAutocompleteEntry &entry =
            entires->addColumn(rows.stringForColumnIndex(schema), rows.stringForColumnIndex(table),
                               rows.stringForColumnIndex(column),
                               types.text(rows.stringForColumnIndex(type), rows.objectForColumnIndex(size),
                                          precision < 0 ? KNValue() : rows.objectForColumnIndex(precision),
                                          scale < 0 ? KNValue() : rows.objectForColumnIndex(scale)));
        if (nullable >= 0)
            entry.addTrait(rows.numberForColumnIndex(nullable).toBool()
                               ? KNDatabaseAutocompleteEntry::Nullable
                               : KNDatabaseAutocompleteEntry::NotNull);
        if (key >= 0 && rows.numberForColumnIndex(key).toBool())
            entry.addTrait(KNDatabaseAutocompleteEntry::PrimaryKey);
    }
    return entires;
}

bool MSSQLAutocompleteHelper::store(const QString &description, const Entires &entires)
{
    for (;;) {
        QMutexLocker locker(&m_mutex);
        const Entires known = m_autocompleteEntries.value(description);
        locker.unlock();
        // Large sets are compared outside of the lock, which lookups of the UI thread take.
        if (known && known->isEqualTo(*entires))
            return false;
        locker.relock();
        if (m_autocompleteEntries.value(description) != known)
            continue;
        m_autocompleteEntries.insert(description, entires);
        return true;
    }
}

void MSSQLAutocompleteHelper::postUpdated(const QString &description)
{
    KNDispatch::mainQueue([description] {
        KNNotificationCenter::defaultCenter()->post(AutoCompleteUpdatedNotificationName,
                                                    {{ObjectKey, description}});
    });
}

std::shared_ptr<const KNCompletionCatalog>
MSSQLAutocompleteHelper::catalogForConnection(const VantorDBC &details)
{
    return m_catalogs.catalog(static_cast<const MSSQLDatabaseConnectionDetails &>(details));
}

std::shared_ptr<const KNCompletionCatalog> MSSQLAutocompleteHelper::loadCatalog(const VantorDBC &details)
{
    return m_catalogs.load(static_cast<const MSSQLDatabaseConnectionDetails &>(details));
}

const KNSQLDialect *MSSQLAutocompleteHelper::dialect() const
{
    return &MSSQLDialect::shared();
}

MSSQLAutocompleteHelper::Entires
MSSQLAutocompleteHelper::entriesForDatabaseConnectionDetails(const VantorDBC &details) const
{
    const QString description = details.description();
    const QMutexLocker locker(&m_mutex);
    return m_autocompleteEntries.value(description);
}

std::optional<MSSQLAutocompleteHelper::List>
MSSQLAutocompleteHelper::schemasForDatabaseConnectionDetails(const VantorDBC &details) const
{
    const Entires entires = entriesForDatabaseConnectionDetails(details);
    return entires ? std::optional(entires->schemas()) : std::nullopt;
}

std::optional<MSSQLAutocompleteHelper::List>
MSSQLAutocompleteHelper::tablesForDatabaseConnectionDetails(const VantorDBC &details) const
{
    const Entires entires = entriesForDatabaseConnectionDetails(details);
    return entires ? std::optional(entires->tables()) : std::nullopt;
}

std::optional<MSSQLAutocompleteHelper::List>
MSSQLAutocompleteHelper::columnsForDatabaseConnectionDetails(const VantorDBC &details) const
{
    const Entires entires = entriesForDatabaseConnectionDetails(details);
    return entires ? std::optional(entires->columns()) : std::nullopt;
}

std::optional<MSSQLAutocompleteHelper::List>
MSSQLAutocompleteHelper::columnsForDatabaseConnectionDetailsInTable(const VantorDBC &details,
                                                                    const QString &name) const
{
    const Entires entires = entriesForDatabaseConnectionDetails(details);
    if (!entires)
        return std::nullopt;
    return entires->columnsForTableAndOrSchema(MSSQLQuoting::unescapeTableNameIfRequired(name));
}

std::optional<MSSQLAutocompleteHelper::List>
MSSQLAutocompleteHelper::entriesForDatabaseConnectionDetailsWithParent(const VantorDBC &details,
                                                                       const QString &name) const
{
    const Entires entires = entriesForDatabaseConnectionDetails(details);
    if (!entires)
        return std::nullopt;
    return entires->entriesForTableAndOrSchema(MSSQLQuoting::unescapeTableNameIfRequired(name));
}

std::optional<QStringList> MSSQLAutocompleteHelper::possibleNamesForAlias(const VantorDBC &details) const
{
    const Entires entires = entriesForDatabaseConnectionDetails(details);
    return entires ? std::optional(entires->allPossibleNamesForAlias()) : std::nullopt;
}
