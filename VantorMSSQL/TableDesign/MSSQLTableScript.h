#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "QueryLoader/KNStatementPair.h"
#include "TableDesign/MSSQLDesignedTable.h"

/// The statements that create and rename a table. Pure, any thread.
namespace MSSQLTableScript {

/// The dialog that a name was entered in.
enum class Dialog { Create, Rename };

/// The entered name without the white space around it. Null when it is empty or has other characters than
/// letters, digits and "_", in the create dialog also "-".
QString acceptedName(const QString &entered, Dialog dialog);

/// The definitions of a new table's columns, and of its primary key if there is one. Defaults are taken as
/// they were entered.
QStringList columnDefinitions(const QList<MSSQLColumnRecord> &columns);

/// `columns` are definitions such as "Id int NOT NULL"; without any the table gets "Column1 int".
KNStatementPair creationQueryForColumns(const QStringList &columns, const MSSQLDesignedTable &table);

/// The exact statement writes a new name that needs brackets with them into the literal, and the server takes
/// them as part of the name.
KNStatementPair rename(const MSSQLDesignedTable &table, const QString &newName);

} // namespace MSSQLTableScript
