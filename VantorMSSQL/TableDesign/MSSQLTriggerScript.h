#pragma once

#include "QueryLoader/KNStatementPair.h"
#include "TableDesign/MSSQLDesignedTable.h"

/// The statements that drop, enable and disable a trigger of a table. Pure, any thread.
namespace MSSQLTriggerScript {

/// A trigger is in the schema of its table. The exact statement holds the name as it is.
KNStatementPair drop(const MSSQLDesignedTable &table, const QString &triggerName);

/// Both forms are the same. SQL Server 2000 knows this syntax, too.
KNStatementPair setEnabled(const MSSQLDesignedTable &table, const QString &triggerName, bool isEnabled);

} // namespace MSSQLTriggerScript
