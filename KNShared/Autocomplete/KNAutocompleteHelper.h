#pragma once

#include "KNSharedExport.h"

class VantorDBC;

/// Keeps what completion offers for the databases of one kind of server.
class KNSHARED_EXPORT KNAutocompleteHelper
{
public:
    virtual ~KNAutocompleteHelper();

    /// Starts to load the entries of the settings' database anew and returns at once. Any thread.
    virtual void requestEntriesForDatabaseConnectionDetails(const VantorDBC &details) = 0;
};
