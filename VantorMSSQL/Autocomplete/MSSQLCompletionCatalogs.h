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

    explicit MSSQLCompletionCatalogs(MSSQLAutocompleteHelper &helper)
        : m_helper(helper)
    {
    }

    /// Returns the newest catalog, which may be incomplete or outdated while a load runs; null if there is
    /// none. After a failure the next load starts half a minute later at the earliest.
    Catalog catalog(const MSSQLDatabaseConnectionDetails &details);
    /// Loads a catalog now and caches it; null if that fails. Blocks on the server.
    Catalog load(const MSSQLDatabaseConnectionDetails &details);
    /// Makes the next request load again.
    void markOutdated(const QString &description);

private:
    using Clock = std::chrono::steady_clock;

    struct Known
    {
        Catalog catalog;
        bool isLoading = false;
        bool isOutdated = true;
        Clock::time_point notBefore; ///< of the next load
    };

    void publish(const QString &description, const Catalog &catalog);
    /// The names of another database through the same login.
    std::function<Catalog(const QString &)> otherDatabases(const MSSQLDatabaseConnectionDetails &details,
                                                           const QStringList &databases);

    MSSQLAutocompleteHelper &m_helper;
    QMutex m_mutex;
    QHash<QString, Known> m_known; ///< by description; guarded by m_mutex
};
