#pragma once

#include "Database/VantorDBC.h"
#include "QueryLoader/KNQueryReport.h"

/// The script of a procedure or function: the settings it was created with and its definition. The catalog
/// query returns one row for each part: setting, setting, definition.
struct MSSQLModuleScript
{
    const char *title;           ///< of the catalog query
    const char *namePlaceholder; ///< placeholder for the object's name; SCHEMA and DATABASE are filled, too
    QString schema;
    QString name; ///< not quoted
    const char *errorDomain;
    QString failureComment; ///< the text if the query returns none
    QString keyword = {};   ///< "PROCEDURE" or "FUNCTION" to change CREATE into ALTER; otherwise empty

    /// Returns the text. A failed query is reported to the user and stored in `queryFailure` (may be null);
    /// it is also recorded in `report`, as is a definition that cannot be read. Blocks on the server.
    QString load(const VantorDBC &details, KNQueryReport *report, KNError *queryFailure = nullptr) const;
};
