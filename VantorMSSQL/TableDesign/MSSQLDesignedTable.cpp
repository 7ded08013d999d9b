#include "TableDesign/MSSQLDesignedTable.h"

#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"

QString MSSQLDesignedTable::quoted() const
{
    const QString table = MSSQLQuoting::quotedName(name);
    return schema.isEmpty() ? table : MSSQLQuoting::quotedName(schema) + QLatin1Char('.') + table;
}

QString MSSQLDesignedTable::renameLiteral(const QString &part) const
{
    QStringList parts;
    if (!schema.isEmpty())
        parts.append(MSSQLObjectPath::bracketed(schema));
    parts.append(MSSQLObjectPath::bracketed(name));
    if (!part.isEmpty())
        parts.append(MSSQLObjectPath::bracketed(part));
    return MSSQLQuoting::unicodeLiteral(parts.join(QLatin1Char('.')));
}

QString MSSQLDesignedTable::exactName() const
{
    return schema.isEmpty() || schema == defaultSchema ? name : exactPath();
}

QString MSSQLDesignedTable::exactPath() const
{
    return escaped(schema) + QLatin1Char('.') + escaped(name);
}

QString MSSQLDesignedTable::escaped(const QString &name)
{
    return name.isNull() ? QStringLiteral("") : MSSQLQuoting::escapeTableNameIfRequired(name);
}
