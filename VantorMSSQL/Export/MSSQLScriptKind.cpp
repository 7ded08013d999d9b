#include "Export/MSSQLScriptKind.h"

namespace {

enum ScriptRank { TypeRank, TableTypeRank, TableRank, FunctionRank, ViewRank, ProcedureRank };

} // namespace

bool MSSQLScriptKind::isFunction(const KNScriptObject &object)
{
    return object.kind.contains(QLatin1String("FUNCTION"));
}

bool MSSQLScriptKind::isProcedure(const KNScriptObject &object)
{
    return object.kind.contains(QLatin1String("PROCEDURE"));
}

bool MSSQLScriptKind::isView(const KNScriptObject &object)
{
    return object.kind == QLatin1String("VIEW");
}

bool MSSQLScriptKind::isInlineFunction(const KNScriptObject &object)
{
    return isFunction(object) && object.kind.contains(QLatin1String("INLINE"));
}

bool MSSQLScriptKind::hasDeferredNames(const KNScriptObject &object)
{
    return isProcedure(object) || (isFunction(object) && !isInlineFunction(object));
}

bool MSSQLScriptKind::isScriptable(const KNScriptObject &object)
{
    return !object.kind.startsWith(QLatin1String("CLR"));
}

int MSSQLScriptKind::rankOf(const KNScriptObject &object)
{
    if (object.hasRows)
        return TableRank;
    if (object.kind == QLatin1String("TYPE"))
        return TypeRank;
    if (object.kind == QLatin1String("TABLE_TYPE"))
        return TableTypeRank;
    return isFunction(object) ? FunctionRank : isProcedure(object) ? ProcedureRank : ViewRank;
}

QString MSSQLScriptKind::groupTitle(const QString &kind)
{
    const KNScriptObject object{kind, {}, {}, kind == QLatin1String("USER_TABLE")};
    switch (rankOf(object)) {
    case TypeRank:
        return tr("Types");
    case TableTypeRank:
        return tr("Table Types");
    case TableRank:
        return tr("Tables");
    case FunctionRank:
        return tr("Functions");
    case ProcedureRank:
        return tr("Stored Procedures");
    default:
        return tr("Views");
    }
}

QString MSSQLScriptKind::dropWord(const KNScriptObject &object)
{
    if (object.hasRows)
        return QStringLiteral("TABLE");
    for (const char *const word : {"FUNCTION", "PROCEDURE", "TYPE"}) {
        if (object.kind.contains(QLatin1String(word)))
            return QString::fromLatin1(word);
    }
    return QStringLiteral("VIEW");
}
