#pragma once

#include "Autocomplete/KNCompletionCatalog.h"
#include "Autocomplete/MSSQLAutocompleteEntires.h"
#include "Foundation/KNError.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

/// Builds the names of a database for completion: its tables and columns, which are loaded already, and what
/// other catalog queries return. Blocks on the server: any thread except the UI thread.
namespace MSSQLCompletionLoader {

using Catalog = std::shared_ptr<KNCompletionCatalog>;

/// Tables and their columns only, without a query; not indexed.
Catalog tables(const std::shared_ptr<const MSSQLAutocompleteEntires> &entires, const QString &defaultSchema);

/// Adds views, routines with their members, types, synonyms, sequences, foreign keys, schemas and databases.
/// A query that fails is logged, and its names are missing.
void addObjects(const MSSQLDatabaseConnectionDetails &details, KNCompletionCatalog *catalog);

/// The objects of the system schemas with their columns; null if the query fails, which is logged.
Catalog systemObjects(const MSSQLDatabaseConnectionDetails &details);

} // namespace MSSQLCompletionLoader
