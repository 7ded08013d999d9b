#include "TableDesign/MSSQLRenameScript.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "TableDesign/MSSQLDesignedTable.h"

#include <algorithm>

namespace {

QString renameStatement(const QString &pathLiteral, const QString &newName, const char *objectType)
{
    return KNFormat("EXEC sp_rename %@, %@, N'%s'", pathLiteral, MSSQLQuoting::unicodeLiteral(newName),
                    objectType);
}

} // namespace

QString MSSQLRenameScript::table(const MSSQLDesignedTable &table, const QString &newName)
{
    return renameStatement(table.renameLiteral(), newName, "OBJECT");
}

QString MSSQLRenameScript::column(const MSSQLDesignedTable &table, const QString &columnName,
                                  const QString &newName)
{
    return renameStatement(table.renameLiteral(columnName), newName, "COLUMN");
}

QString MSSQLRenameScript::index(const MSSQLDesignedTable &table, const QString &indexName,
                                 const QString &newName)
{
    return renameStatement(table.renameLiteral(indexName), newName, "INDEX");
}

QString MSSQLRenameScript::constraint(const MSSQLDesignedTable &table, const QString &constraintName,
                                      const QString &newName)
{
    return renameStatement(MSSQLDesignedTable{table.schema, constraintName}.renameLiteral(), newName,
                           "OBJECT");
}

QString MSSQLRenameScript::acceptedName(const QString &entered)
{
    const QString name = entered.trimmed();
    const auto isControl = [](QChar c) { return c.category() == QChar::Other_Control; };
    const bool isAccepted =
        !name.isEmpty() && name.size() <= LongestName && std::none_of(name.begin(), name.end(), isControl);
    return isAccepted ? name : QString();
}
