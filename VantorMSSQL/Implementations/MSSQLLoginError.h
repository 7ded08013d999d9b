#pragma once

#include <QString>

/// Errors of connecting.
namespace MSSQLLoginError {

inline const QString Domain = QStringLiteral("com.quorvex.mssql.databaseConnection");
constexpr int Hopeless = 1; ///< the code of an error that no other protocol version would mend

} // namespace MSSQLLoginError
