#pragma once

#include "Catalog/MSSQLForeignKeyEntry.h"
#include "QueryLoader/KNStatementPair.h"
#include "TableDesign/MSSQLDesignedTable.h"

/// The statements that drop and make a foreign key. Pure, any thread.
namespace MSSQLForeignKeyScript {

/// The exact statement is one of MySQL's syntax, which a server refuses; its names are not quoted.
KNStatementPair drop(const MSSQLDesignedTable &table, const QString &keyName);

/// Makes a key. An untrusted one is added without checking the rows there are.
QString create(const MSSQLDesignedTable &table, const MSSQLForeignKeyEntry &key);
/// Drops the old key and makes the new one; null if they are equal.
QString change(const MSSQLDesignedTable &table, const MSSQLForeignKeyEntry &oldKey,
               const MSSQLForeignKeyEntry &newKey);

} // namespace MSSQLForeignKeyScript
