#pragma once

#include "Autocomplete/KNDatabaseAutocompleteEntry.h"
#include "KNSharedExport.h"

#include <memory>

class KNCompletionCatalog;
class VantorDBC;
struct KNSQLDialect;

/// Caches the completion entries of databases, for one kind of server. Loads run in the background; every
/// operation returns at once. Any thread.
class KNSHARED_EXPORT KNAutocompleteHelper
{
public:
    /// Posted on the main queue after the entries of a database have changed. Its user info has the
    /// description of the connection's settings under ObjectKey.
    static const QString AutoCompleteUpdatedNotificationName;
    static const QString ObjectKey;

    virtual ~KNAutocompleteHelper();

    /// Starts to load the entries of the settings' database unless they are known; with forceUpdate in any
    /// case.
    void requestEntriesForDatabaseConnectionDetails(const VantorDBC &details);
    virtual void requestEntriesForDatabaseConnectionDetails(const VantorDBC &details, bool forceUpdate) = 0;

    /// Returns the known names of the settings' database; null before they are loaded. Asks for what is
    /// missing, and the notification reports it later.
    virtual std::shared_ptr<const KNCompletionCatalog> catalogForConnection(const VantorDBC &details);
    /// Loads the names of the settings' database, or of the login's default one, and returns them; null if
    /// that fails. Blocks on the server: any thread except the UI thread.
    virtual std::shared_ptr<const KNCompletionCatalog> loadCatalog(const VantorDBC &details);
    /// The words and clauses of the server's language; null if statements cannot be completed.
    virtual const KNSQLDialect *dialect() const;
};
