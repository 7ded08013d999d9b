#include "Autocomplete/MSSQLCompletionCatalogs.h"

#include "Autocomplete/MSSQLAutocompleteHelper.h"
#include "Autocomplete/MSSQLCompletionLoader.h"
#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Foundation/KNDispatch.h"

namespace {

constexpr std::chrono::seconds PauseAfterFailure(30);

/// The key of the system objects beside the key of a database's own.
QString systemKey(const QString &description)
{
    return description + QStringLiteral("\nsystem");
}

} // namespace

MSSQLCompletionCatalogs::Catalog
MSSQLCompletionCatalogs::catalog(const MSSQLDatabaseConnectionDetails &details)
{
    return request(details.description(), [this, settings = details.copy()] {
        load(static_cast<const MSSQLDatabaseConnectionDetails &>(*settings));
    });
}

MSSQLCompletionCatalogs::Catalog MSSQLCompletionCatalogs::request(const QString &key,
                                                                  std::function<void()> load)
{
    const QMutexLocker locker(&m_mutex);
    Known &known = m_known[key];
    if (!known.isLoading && known.isOutdated && Clock::now() >= known.notBefore) {
        known.isLoading = true;
        known.isOutdated = false;
        KNDispatch::globalQueue(std::move(load));
    }
    return known.catalog;
}

void MSSQLCompletionCatalogs::markOutdated(const QString &description, const Entires &entires)
{
    const QMutexLocker locker(&m_mutex);
    Known &known = m_known[description];
    known.entires = entires;
    known.isOutdated = true;
    known.notBefore = {};
}

MSSQLCompletionCatalogs::Entires
MSSQLCompletionCatalogs::entiresFor(const MSSQLDatabaseConnectionDetails &details)
{
    const QString description = details.description();
    const auto newest = [&] {
        const QMutexLocker locker(&m_mutex);
        return std::exchange(m_known[description].entires, nullptr);
    };
    if (Entires entires = newest())
        return entires;
    if (Entires entires = m_helper.entriesForDatabaseConnectionDetails(details))
        return entires;
    m_helper.doLoadAutocompleteDetails(details);
    Entires loaded = newest();
    if (!loaded)
        loaded = m_helper.entriesForDatabaseConnectionDetails(details);
    const QMutexLocker locker(&m_mutex);
    m_known[description].isOutdated = false; // the tables are what this load wanted
    return loaded;
}

MSSQLCompletionCatalogs::Catalog MSSQLCompletionCatalogs::load(const MSSQLDatabaseConnectionDetails &details)
{
    Catalog loaded;
    const QString description = details.description();
    const Entires entires = entiresFor(details);
    if (entires) {
        const QString schema = MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(details);
        const auto first = MSSQLCompletionLoader::tables(entires, schema);
        first->systemObjects = systemObjects(details);
        first->createIndex();
        publish(description, description, first);
        // The rest can take longer.
        const auto complete = MSSQLCompletionLoader::tables(entires, schema);
        MSSQLCompletionLoader::addObjects(details, complete.get());
        complete->otherDatabase = otherDatabases(details, complete->databases);
        complete->systemObjects = first->systemObjects;
        complete->createIndex();
        publish(description, description, complete);
        loaded = complete;
    }
    finishLoad(description, !entires);
    return loaded;
}

void MSSQLCompletionCatalogs::finishLoad(const QString &key, bool hasFailed)
{
    const QMutexLocker locker(&m_mutex);
    Known &known = m_known[key];
    known.isLoading = false;
    if (hasFailed) {
        known.isOutdated = true;
        known.notBefore = Clock::now() + PauseAfterFailure;
    }
}

void MSSQLCompletionCatalogs::loadSystemObjects(const MSSQLDatabaseConnectionDetails &details)
{
    const QString key = systemKey(details.description());
    const Catalog loaded = MSSQLCompletionLoader::systemObjects(details);
    if (loaded)
        publish(key, details.description(), loaded);
    finishLoad(key, !loaded);
}

std::function<MSSQLCompletionCatalogs::Catalog()>
MSSQLCompletionCatalogs::systemObjects(const MSSQLDatabaseConnectionDetails &details)
{
    return [this, settings = details.copy()] {
        return request(systemKey(settings->description()), [this, settings] {
            loadSystemObjects(static_cast<const MSSQLDatabaseConnectionDetails &>(*settings));
        });
    };
}

void MSSQLCompletionCatalogs::publish(const QString &key, const QString &description, const Catalog &catalog)
{
    {
        const QMutexLocker locker(&m_mutex);
        m_known[key].catalog = catalog;
    }
    MSSQLAutocompleteHelper::postUpdated(description);
}

std::function<MSSQLCompletionCatalogs::Catalog(const QString &)>
MSSQLCompletionCatalogs::otherDatabases(const MSSQLDatabaseConnectionDetails &details,
                                        const QStringList &databases)
{
    const VantorDBCPtr settings = details.copy();
    return [this, settings, databases](const QString &name) -> Catalog {
        const qsizetype index = databases.indexOf(name, 0);
        const auto found =
            index >= 0 ? databases.cbegin() + index
                       : std::find_if(databases.cbegin(), databases.cend(), [&](const QString &known) {
                             return known.compare(name, Qt::CaseInsensitive) == 0;
                         });
        if (found == databases.cend())
            return nullptr;
        const VantorDBCPtr other = settings->copy();
        other->setDatabase(*found);
        return catalog(static_cast<const MSSQLDatabaseConnectionDetails &>(*other));
    };
}
