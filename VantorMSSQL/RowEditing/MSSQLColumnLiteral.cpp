#include "RowEditing/MSSQLColumnLiteral.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"

QString MSSQLColumnLiteral::baseType(const KNEditRowColumn &column)
{
    return column.typeName.section(QLatin1Char('('), 0, 0).toLower();
}

QString MSSQLColumnLiteral::of(const KNEditRowColumn &column, const KNValue &value)
{
    const QString type = baseType(column);
    const bool isFloat = type == QLatin1String("float") || value.kind() == KNValue::Kind::Double;
    const bool isReal = !isFloat && (type == QLatin1String("real") || value.kind() == KNValue::Kind::Float);
    if (!(isFloat || isReal) || !value.isNumber())
        return MSSQLQuoting::literal(value);
    if (isReal) // a real must not be compared as a float
        return KNFormat("CAST(%@ AS real)", QString::number(value.toDouble(), 'e', 8));
    return QString::number(value.toDouble(), 'e', 16);
}
