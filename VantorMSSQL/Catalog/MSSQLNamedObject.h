#pragma once

#include "Catalog/MSSQLCatalogReader.h"

#include <optional>

/// The object of a database that a name means.
struct MSSQLNamedObject
{
    QString schema;
    QString name;
    QString type;         ///< the code of sys.objects without blanks; "TY" for a type of a user
    QString parentSchema; ///< of a trigger's table; null for others
    QString parent;
    QString base;       ///< of a synonym, as the server quotes it; null for others
    QString definition; ///< of a system object; null for others

    /// Finds an object by its name or by schema and name; an empty schema means the login's default, then
    /// dbo. Nullopt, with an error, if there is none. Blocks on the server.
    static std::optional<MSSQLNamedObject> find(const VantorDBC &details, const QStringList &path,
                                                KNError *error);
};
