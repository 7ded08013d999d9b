#pragma once

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Autocomplete/MSSQLAutocompleteEntires.h"
#include "Autocomplete/MSSQLCompletionCatalogs.h"
#include "Foundation/KNError.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include <QHash>
#include <QMutex>

#include <optional>

class DatabaseResultSet;

/// Loads and caches the names of databases, by the description of the settings. Lookups return nullopt when
/// nothing is cached and an empty list for an unknown name. Any thread.
class MSSQLAutocompleteHelper : public KNAutocompleteHelper
{
public:
    using List = MSSQLAutocompleteEntires::List;
    using Entires = std::shared_ptr<const MSSQLAutocompleteEntires>;

    static MSSQLAutocompleteHelper *sharedInstance();

    using KNAutocompleteHelper::requestEntriesForDatabaseConnectionDetails;
    /// Does nothing for settings without a database.
    void requestEntriesForDatabaseConnectionDetails(const VantorDBC &details, bool forceUpdate) override;
    /// Loads the entries now. Blocks on the server: any thread except the UI thread.
    void doLoadAutocompleteDetails(const MSSQLDatabaseConnectionDetails &details);

    std::shared_ptr<const KNCompletionCatalog> catalogForConnection(const VantorDBC &details) override;
    std::shared_ptr<const KNCompletionCatalog> loadCatalog(const VantorDBC &details) override;
    const KNSQLDialect *dialect() const override;
    /// Reports a change of the entries with this description.
    static void postUpdated(const QString &description);

    /// The cached entries, which stay as they are when newer ones are loaded; null if there are none.
    Entires entriesForDatabaseConnectionDetails(const VantorDBC &details) const;

    /// \name Lookups. The entries of a list belong to the cached set: hold it while you use them.
    /// @{
    std::optional<List> schemasForDatabaseConnectionDetails(const VantorDBC &details) const;
    std::optional<List> tablesForDatabaseConnectionDetails(const VantorDBC &details) const;
    std::optional<List> columnsForDatabaseConnectionDetails(const VantorDBC &details) const;
    /// The columns of a table; its name may have brackets and a schema.
    std::optional<List> columnsForDatabaseConnectionDetailsInTable(const VantorDBC &details,
                                                                   const QString &name) const;
    /// The columns of a table or the tables of a schema.
    std::optional<List> entriesForDatabaseConnectionDetailsWithParent(const VantorDBC &details,
                                                                      const QString &name) const;
    std::optional<QStringList> possibleNamesForAlias(const VantorDBC &details) const;
    /// @}

private:
    static KNError load(const MSSQLDatabaseConnectionDetails &details, Entires *entires);
    static std::shared_ptr<MSSQLAutocompleteEntires> entiresFrom(DatabaseResultSet &rows);
    /// Replaces the cached entries unless they are equal; true if replaced.
    bool store(const QString &description, const Entires &entires);

    MSSQLCompletionCatalogs m_catalogs{*this};
    mutable QMutex m_mutex;
    QHash<QString, Entires> m_autocompleteEntries; ///< by description; guarded by m_mutex
};
