#include "Autocomplete/KNSourceColumns.h"

namespace {

constexpr int MaximumDepth = 16;             ///< of subqueries and of common table expressions of themselves
constexpr int MaximumSteps = 2'000;          ///< expressions can name themselves many times
constexpr qsizetype MaximumColumns = 10'000; ///< of one source

bool isSameName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

KNSourceColumn KNSourceColumn::from(const KNDatabaseAutocompleteEntry &entry)
{
    using Entry = KNDatabaseAutocompleteEntry;
    return {.name = entry.entryName(),
            .type = entry.entryDetails(),
            .isNullable = entry.hasTrait(Entry::Nullable),
            .isRequired = entry.hasTrait(Entry::NotNull),
            .isPrimaryKey = entry.hasTrait(Entry::PrimaryKey)};
}

const KNCompletionCatalog::Object *KNSourceColumns::object(const QStringList &path) const
{
    if (!m_catalog)
        return nullptr;
    const KNCompletionCatalog::Found found = m_catalog->findOnServer(path);
    if (found.owner)
        m_others.append(found.owner);
    return found.object;
}

/// The common table expression or temporary table that a source names; null if it names none.
const KNSQLSource *KNSourceColumns::declared(const KNSQLSource &source) const
{
    if (source.path.size() != 1 || source.isResolved)
        return nullptr;
    for (const KNSQLSources *const known : {&m_scope.ctes, &m_scope.temporaryTables}) {
        for (auto it = known->crbegin(); it != known->crend(); ++it) {
            if (isSameName(it->path.value(0), source.path.first()))
                return &*it;
        }
    }
    return nullptr;
}

QList<KNSourceColumn> KNSourceColumns::of(const KNSQLSource &source, int depth) const
{
    QList<KNSourceColumn> columns;
    if (depth > MaximumDepth || ++m_steps > MaximumSteps)
        return columns;
    if (const KNSQLSource *const known = declared(source)) {
        columns = of(*known, depth + 1);
    } else if (source.isResolved) {
        columns = outputsOf(source, depth);
    } else if (const auto *const found = object(source.path); found && found->entry) {
        for (const KNDatabaseAutocompleteEntry *child : found->entry->entryChildren()) {
            if (child->entryCompletionType() == KNDatabaseAutocompleteEntry::Column)
                columns.append(KNSourceColumn::from(*child));
        }
    }
    for (qsizetype index = 0; index < source.columnNames.size(); ++index) {
        if (index < columns.size())
            columns[index].name = source.columnNames[index];
        else
            columns.append({.name = source.columnNames[index], .type = {}});
    }
    return columns;
}

QList<KNSourceColumn> KNSourceColumns::outputsOf(const KNSQLSource &source, int depth) const
{
    QList<KNSourceColumn> columns;
    for (const KNSQLOutput &output : source.outputs) {
        if (!output.isStar) {
            columns.append({.name = output.name, .type = output.type});
            continue;
        }
        for (qsizetype index = 0; source.inner && index < source.inner->size(); ++index) {
            const KNSQLSource &inner = source.inner->at(index);
            const bool isMeant =
                output.qualifier.isEmpty() || isSameName(inner.visibleName(), output.qualifier.last());
            if (isMeant && columns.size() < MaximumColumns)
                columns += of(inner, depth + 1);
        }
    }
    return columns;
}
