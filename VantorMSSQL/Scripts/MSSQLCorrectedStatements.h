#pragma once

#include "Foundation/KNUserDefaults.h"

/// Some statements keep an old form that a server refuses or that changes more than it should. The user
/// default "MSSQLUseCorrectedStatements" (boolean, default no) replaces them by corrected ones.
namespace MSSQLCorrectedStatements {

/// The key of the user default.
inline const QString Key = QStringLiteral("MSSQLUseCorrectedStatements");

inline bool areUsed()
{
    return KNUserDefaults::standardUserDefaults()->boolForKey(Key);
}

} // namespace MSSQLCorrectedStatements
