#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QMap>

/// The script of a procedure or function: the settings it was made with and its definition, from a catalog
/// query with a row of setting, setting and definition for each part.
struct MSSQLModuleScript
{
    QString title;                 ///< of the catalog query
    QMap<QString, QString> values; ///< what fills it, beside the database
    const char *errorDomain;
    QString failureComment; ///< the text when the query gives none
    QString keywords = {};  ///< "PROCEDURE" or "FUNCTION" when CREATE is to become ALTER; else empty

    /// The text. `error` may be null; what fails is reported. Blocks on the server.
    QString load(const VantorDBC &details, KNError *error) const;
};
