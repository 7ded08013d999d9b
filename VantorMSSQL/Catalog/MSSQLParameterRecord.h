#pragma once

#include "Catalog/MSSQLCatalogReader.h"

/// A parameter of a stored procedure.
struct MSSQLParameterRecord
{
    static constexpr auto Title = "List_ParametersForStoredProcedure";
    static MSSQLCatalogReader::Values values(const QString &schema, const QString &procedure);
    /// In the order of the declaration.
    static QList<MSSQLParameterRecord> listFrom(DatabaseResultSet &rows);

    QString parameterName; ///< with its @
    QString typeName;      ///< as DECLARE takes it, such as nvarchar(50)
    bool isOutput = false;
    QString baseType = {}; ///< the built-in type below a type of users, "table type" for tables
};
