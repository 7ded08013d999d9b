#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

/// The script that creates a table type.
namespace MSSQLTableTypeScript {

/// Null with an error, also if the type does not exist or may not be seen. Names without quotes. Blocks on
/// the server.
QString text(const VantorDBC &details, const QString &schema, const QString &name, KNError *error);

} // namespace MSSQLTableTypeScript
