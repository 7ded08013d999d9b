#include "SQL/Scope/KNSQLSelectItem.h"

#include "SQL/Scope/KNSQLName.h"

namespace {

using Role = KNSQLRole;

/// The index behind DISTINCT and TOP at the beginning of a select list.
qsizetype behindQuantifiers(const KNSQLTokens &tokens, qsizetype index, qsizetype end)
{
    while (index < end && tokens.at(index).role == Role::Quantifier)
        ++index;
    if (index >= end || tokens.at(index).role != Role::Top)
        return index;
    ++index;
    if (KNSQLName::is(tokens, index, u'('))
        index = KNSQLName::behindParentheses(tokens, index, end);
    else if (index < end)
        ++index;
    while (index < end && (tokens.at(index).role == Role::Operator || tokens.at(index).role == Role::With))
        ++index;
    return std::min(index, end);
}

bool isNameOrText(const KNSQLTokens &tokens, qsizetype index)
{
    return KNSQLName::isName(tokens, index) || tokens.at(index).kind == SQLTokenKind::String;
}

QString aliasAt(const KNSQLTokens &tokens, qsizetype index)
{
    if (tokens.at(index).kind != SQLTokenKind::String)
        return KNSQLName::text(tokens, index);
    const QStringView text = tokens.textAt(index);
    const QStringView behindQuote = text.mid(text.indexOf(u'\'') + 1);
    const bool isClosed = behindQuote.endsWith(u'\''); // not while it is being typed
    return behindQuote.chopped(isClosed ? 1 : 0).toString();
}

} // namespace

std::optional<KNSQLOutput> KNSQLSelectItem(const KNSQLTokens &tokens, qsizetype begin, qsizetype end)
{
    begin = behindQuantifiers(tokens, begin, end);
    if (begin < 0 || begin >= end)
        return std::nullopt;
    const qsizetype last = end - 1;
    KNSQLOutput output;
    if (KNSQLName::is(tokens, last, u'*')) {
        output.isStar = true;
        if (last > begin)
            output.qualifier = KNSQLName::path(tokens, begin, last).parts;
        return output;
    }
    if (KNSQLName::is(tokens, begin + 1, u'=') && begin + 1 < end) { // alias = expression
        if (tokens.at(begin).kind == SQLTokenKind::Variable)
            return std::nullopt;
        output.name = aliasAt(tokens, begin);
        return output;
    }
    const bool isNamed = last > begin && tokens.at(last - 1).role == Role::As;
    const bool isText = tokens.at(last).kind == SQLTokenKind::String && last > begin &&
                        (KNSQLName::isName(tokens, last - 1) || KNSQLName::is(tokens, last - 1, u')'));
    if (isNamed ? !isNameOrText(tokens, last) : !KNSQLName::isName(tokens, last) && !isText)
        return std::nullopt;
    output.name = aliasAt(tokens, last);
    return output;
}

std::optional<KNSQLOutput> KNSQLColumnDefinition(const KNSQLTokens &tokens, qsizetype begin, qsizetype end)
{
    if (begin >= end || !KNSQLName::isName(tokens, begin))
        return std::nullopt;
    KNSQLOutput column;
    column.name = KNSQLName::text(tokens, begin);
    KNSQLName::type(tokens, begin + 1, end, &column.type);
    return column;
}

QList<KNSQLOutput> KNSQLColumnDefinitions(const KNSQLTokens &tokens, qsizetype index, qsizetype end)
{
    QList<KNSQLOutput> columns;
    const qsizetype behind = KNSQLName::behindParentheses(tokens, index, end);
    qsizetype begin = index + 1;
    const auto add = [&](qsizetype itemEnd) {
        if (const auto column = KNSQLColumnDefinition(tokens, begin, itemEnd))
            columns.append(*column);
    };
    qsizetype depth = 0;
    for (qsizetype at = begin; at < behind; ++at) {
        if (KNSQLName::is(tokens, at, u'('))
            ++depth;
        else if (KNSQLName::is(tokens, at, u')') && --depth < 0) {
            add(at);
            return columns;
        } else if (KNSQLName::is(tokens, at, u',') && depth == 0) {
            add(at);
            begin = at + 1;
        }
    }
    add(behind);
    return columns;
}
