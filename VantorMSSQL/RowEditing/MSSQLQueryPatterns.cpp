#include "RowEditing/MSSQLQueryPatterns.h"

#include "Foundation/KNAssert.h"
#include "Implementations/MSSQLQuoting.h"

#include <QRegularExpression>

namespace {

QRegularExpression compiled(const char *pattern, const char *failure)
{
    const QRegularExpression expression(QString::fromLatin1(pattern),
                                        QRegularExpression::CaseInsensitiveOption |
                                            QRegularExpression::DotMatchesEverythingOption);
    KNAssert(expression.isValid(), failure, "RowEditing/MSSQLResultSetViewControllerHelper");
    return expression;
}

const QRegularExpression &tableName()
{
    static const QRegularExpression expression =
        compiled("FROM\\s+(([^\\s,;]+)(?:[;\\s]*,\\s*([^ ,]+))*)[;\\s]*",
                 "Failed to create tableName regular expression.");
    return expression;
}

const QRegularExpression &schemaAndTableSplit()
{
    static const QRegularExpression expression =
        compiled("((\\w+)\\.)?(\\w+)", "Failed to create schemaAndTableSplitRegularExpression.");
    return expression;
}

const QRegularExpression &queryHasJoin()
{
    static const QRegularExpression expression =
        compiled("\\sJOIN\\s", "Failed to create queryHasJoinExpression.");
    return expression;
}

} // namespace

bool MSSQLQueryPatterns::hasJoin(const QString &query)
{
    return queryHasJoin().match(query).hasMatch();
}

QString MSSQLQueryPatterns::firstTable(const QString &query)
{
    const QRegularExpressionMatch match = tableName().match(query);
    return match.hasMatch() && match.hasCaptured(1) ? match.captured(1) : QString();
}

std::optional<MSSQLQueryPatterns::Table> MSSQLQueryPatterns::split(const QString &text)
{
    if (!schemaAndTableSplit().match(text).hasMatch())
        return std::nullopt;
    const qsizetype dot = text.indexOf(QLatin1Char('.'));
    if (dot < 0)
        return Table{{}, MSSQLQuoting::unescapeTableNameIfRequired(text)};
    return Table{MSSQLQuoting::unescapeTableNameIfRequired(text.left(dot)),
                 MSSQLQuoting::unescapeTableNameIfRequired(text.mid(dot + 1))};
}
