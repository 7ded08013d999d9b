#pragma once

#include "RowEditing/MSSQLRowStatement.h"
#include "TableDesign/MSSQLColumnScript.h"
#include "TableDesign/MSSQLForeignKeyScript.h"
#include "TableDesign/MSSQLIndexScript.h"
#include "TableDesign/MSSQLPrimaryKeyScript.h"
#include "TableDesign/MSSQLTableScript.h"
#include "TableDesign/MSSQLTriggerScript.h"

/// Helpers of the tests of designer statements.
namespace DesignStatements {

/// Names that are text of SQL unless they are quoted. Each needs brackets.
inline QStringList hostileNames()
{
    QStringList names;
    for (const char *name :
         {"a]; DROP TABLE dbo.victim; --", "[x]", "x]y", "it's", "say \"hi\"", "dbo.victim", "a.b.c", " lead",
          "line\nDROP TABLE dbo.victim\n--", "x\r\nGO\r\nDROP TABLE dbo.victim\r\nGO\r\n--", "--", "/*",
          "*/ DROP TABLE dbo.victim /*", "select", "Größe", "'); DROP TABLE dbo.victim; --",
          "{TABLE_NAME}%@"})
        names.append(QString::fromUtf8(name));
    return names;
}

inline MSSQLColumnRecord column(const QString &name, const char *type, bool isNullable = false,
                                bool isPrimaryKey = false)
{
    MSSQLColumnRecord record;
    record.columnName = name;
    record.typeName = QString::fromLatin1(type);
    record.isNullable = isNullable;
    record.isPrimaryKey = isPrimaryKey;
    return record;
}

} // namespace DesignStatements
