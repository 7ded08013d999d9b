#pragma once

#include "KNSharedExport.h"

class VantorDBC;

/// Caches the completion entries of databases, for one kind of server.
class KNSHARED_EXPORT KNAutocompleteHelper
{
public:
    virtual ~KNAutocompleteHelper();

    /// Starts to reload the entries of the settings' database and returns at once. Any thread.
    virtual void requestEntriesForDatabaseConnectionDetails(const VantorDBC &details) = 0;
};
