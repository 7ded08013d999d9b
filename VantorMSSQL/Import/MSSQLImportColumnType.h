#pragma once

#include "Import/KNDatabaseImportHelper.h"

/// The types of SQL Server as an import sees them. Pure; any thread.
namespace MSSQLImportColumnType {

/// Reads "nvarchar(50)", "decimal(10,2)", "datetime2(3)" and the like. A type of the user's own, an unknown
/// one and those that only the server can read, such as xml, are of the kind Other.
KNImportColumnType read(const QString &type);

/// The hint for a type that the server would refuse or that would not hold all analysed values.
KNImportTypeHint hint(const QString &type, const KNImportColumnAnalysis &analysis);

} // namespace MSSQLImportColumnType
