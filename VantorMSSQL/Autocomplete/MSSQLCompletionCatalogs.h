#pragma once

#include "Autocomplete/KNCompletionCatalog.h"
#include "Autocomplete/MSSQLAutocompleteEntires.h"

#include <QHash>
#include <QMutex>

#include <chrono>

class MSSQLAutocompleteHelper;
class MSSQLDatabaseConnectionDetails;

/// Caches the completion catalogs of databases, by the description of the settings, and loads them in the
/// background on first need. The helper, which owns the catalogs' tables, must outlive the loads. Any thread.
class MSSQLCompletionCatalogs
{
public:
    using Catalog = std::shared_ptr<const KNCompletionCatalog>;
    using Entires = std::shared_ptr<const MSSQLAutocompleteEntires>;

    explicit MSSQLCompletionCatalogs(MSSQLAutocompleteHelper &helper)
        : m_helper(helper)
    {
    }

    /// Returns the newest catalog, which may be incomplete or outdated while a load runs; null if there is
    /// none. After a failure the next load starts half a minute later at the earliest.
    Catalog catalog(const MSSQLDatabaseConnectionDetails &details);
    /// Loads a catalog now and caches it; null if that fails. Blocks on the server.
    Catalog load(const MSSQLDatabaseConnectionDetails &details);
    /// Makes the next request load again, with these tables.
    void markOutdated(const QString &description, const Entires &entires);

private:
    using Clock = std::chrono::steady_clock;

    struct Known
    {
        Catalog catalog;
        Entires entires; ///< for the next load; null afterwards
        bool isLoading = false;
        bool isOutdated = true;
        Clock::time_point notBefore; ///< of the next load
    };

    /// The tables for a load, which are loaded if they are not known; null if that fails.
    Entires entiresFor(const MSSQLDatabaseConnectionDetails &details);
    /// Returns what is known under a key, and starts `load` if that is outdated.
    Catalog request(const QString &key, std::function<void()> load);
    void publish(const QString &key, const QString &description, const Catalog &catalog);
    /// Ends a load: a failed one may be repeated after a pause.
    void finishLoad(const QString &key, bool hasFailed);
    void loadSystemObjects(const MSSQLDatabaseConnectionDetails &details);
    /// The objects of sys and INFORMATION_SCHEMA.
    std::function<Catalog()> systemObjects(const MSSQLDatabaseConnectionDetails &details);
    /// The names of another database through the same login.
    std::function<Catalog(const QString &)> otherDatabases(const MSSQLDatabaseConnectionDetails &details,
                                                           const QStringList &databases);

    MSSQLAutocompleteHelper &m_helper;
    QMutex m_mutex;
    QHash<QString, Known> m_known; ///< by description, or systemKey() of it; guarded by m_mutex
};
