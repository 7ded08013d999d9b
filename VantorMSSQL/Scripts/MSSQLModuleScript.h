#pragma once

#include "Database/VantorDBC.h"
#include "QueryLoader/KNQueryReport.h"

/// The script of a procedure or function: the settings that it was created with and its definition, from a
/// catalog query with one row of setting, setting and definition for each part.
struct MSSQLModuleScript
{
    const char *title;           ///< of the catalog query
    const char *namePlaceholder; ///< that the object's name fills, beside SCHEMA and DATABASE
    QString schema;
    QString name; ///< not quoted
    const char *errorDomain;
    QString failureComment; ///< the text when the query returns none
    QString keyword = {};   ///< "PROCEDURE" or "FUNCTION" when CREATE is to become ALTER; else empty

    /// The text. A failed query is reported to the user, comes back in `queryFailure` (may be null) and, as a
    /// definition that cannot be read, in `report`. Blocks on the server.
    QString load(const VantorDBC &details, KNQueryReport *report, KNError *queryFailure = nullptr) const;
};
