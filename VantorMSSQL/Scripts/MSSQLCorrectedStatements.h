#pragma once

#include "Foundation/KNUserDefaults.h"

/// Some statements are kept in a form that a server refuses or that changes more than it should. The user
/// default "MSSQLUseCorrectedStatements" (boolean, default no) replaces them by corrected ones.
namespace MSSQLCorrectedStatements {

inline bool areUsed()
{
    return KNUserDefaults::standardUserDefaults()->boolForKey(QStringLiteral("MSSQLUseCorrectedStatements"));
}

} // namespace MSSQLCorrectedStatements
