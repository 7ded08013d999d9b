#pragma once

#include "Catalog/MSSQLCatalogReader.h"
#include "DatabaseTree/KNObjectProperties.h"

/// Properties of objects, from catalog queries that answer one row with a column for each property.
namespace MSSQLObjectProperties {

/// Returns a loader that runs the query with this title. Columns that are NULL are left out; whole numbers
/// are grouped as in the user's locale.
KNObjectPropertiesLoader loader(std::shared_ptr<const VantorDBC> settings, const char *title,
                                const MSSQLCatalogReader::Values &values = {});

} // namespace MSSQLObjectProperties
