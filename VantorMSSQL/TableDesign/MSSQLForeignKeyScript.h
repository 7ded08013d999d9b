#pragma once

#include "QueryLoader/KNStatementPair.h"
#include "TableDesign/MSSQLDesignedTable.h"

/// The statements that drop a foreign key. Pure, any thread.
namespace MSSQLForeignKeyScript {

/// The exact statement is one of MySQL's syntax, which a server refuses; its names are not quoted.
KNStatementPair drop(const MSSQLDesignedTable &table, const QString &keyName);

} // namespace MSSQLForeignKeyScript
