#include "Autocomplete/KNCompletionItem.h"

QString KNCompletionItem::kindName(Kind kind)
{
    switch (kind) {
    case Kind::Column:
        return QStringLiteral("column");
    case Kind::Source:
        return QStringLiteral("source");
    case Kind::Table:
        return QStringLiteral("table");
    case Kind::View:
        return QStringLiteral("view");
    case Kind::Procedure:
        return QStringLiteral("procedure");
    case Kind::Function:
        return QStringLiteral("function");
    case Kind::Type:
        return QStringLiteral("type");
    case Kind::Sequence:
        return QStringLiteral("sequence");
    case Kind::Synonym:
        return QStringLiteral("synonym");
    case Kind::Schema:
        return QStringLiteral("schema");
    case Kind::Database:
        return QStringLiteral("database");
    case Kind::Variable:
        return QStringLiteral("variable");
    case Kind::Parameter:
        return QStringLiteral("parameter");
    case Kind::Keyword:
        return QStringLiteral("keyword");
    case Kind::JoinCondition:
        return QStringLiteral("join condition");
    case Kind::Columns:
        return QStringLiteral("columns");
    case Kind::Snippet:
        return QStringLiteral("snippet");
    }
    return QString();
}
