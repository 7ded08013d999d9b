#include "TableDesign/MSSQLForeignKeyScript.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "TableDesign/MSSQLStatementCaution.h"

KNStatementPair MSSQLForeignKeyScript::drop(const MSSQLDesignedTable &table, const QString &keyName)
{
    return {KNFormat("ALTER TABLE `%@` DROP FOREIGN KEY `%@`", table.name, keyName),
            KNFormat("ALTER TABLE %@ DROP CONSTRAINT %@", table.quoted(), MSSQLQuoting::quotedName(keyName)),
            MSSQLStatementCaution::tr("SQL Server does not accept backticks or DROP FOREIGN KEY.")};
}
