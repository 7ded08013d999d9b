#pragma once

#include "SQL/Format/KNSQLFormatRules.h"

namespace MSSQLFormatRules {

/// The words of T-SQL that its formatter needs. Any thread.
KNSQLFormatRules create();

} // namespace MSSQLFormatRules
