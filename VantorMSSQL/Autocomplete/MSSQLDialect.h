#pragma once

#include "SQL/Scope/KNSQLDialect.h"

/// The words and clauses of T-SQL for completion.
namespace MSSQLDialect {

/// Created at the first call. Any thread.
const KNSQLDialect &shared();

} // namespace MSSQLDialect
