#include "SQL/Scope/KNSQLName.h"

namespace KNSQLName {

bool isName(const KNSQLTokens &tokens, qsizetype index)
{
    if (index < 0 || index >= tokens.size())
        return false;
    const KNSQLPiece &piece = tokens.at(index);
    switch (piece.kind) {
    case SQLTokenKind::BracketedIdentifier:
    case SQLTokenKind::QuotedIdentifier:
        return true;
    case SQLTokenKind::Word:
        return tokens.roleAt(index) == KNSQLRole::None;
    default:
        return false;
    }
}

bool is(const KNSQLTokens &tokens, qsizetype index, QChar character)
{
    return index >= 0 && index < tokens.size() && tokens.at(index).kind == SQLTokenKind::Operator &&
           tokens.textAt(index) == character;
}

QString text(const KNSQLTokens &tokens, qsizetype index)
{
    return withoutQuotes(tokens.textAt(index));
}

QString withoutQuotes(QStringView name)
{
    if (name.isEmpty() || (name.front() != u'[' && name.front() != u'"'))
        return name.toString();
    const QChar closing = name.front() == u'[' ? u']' : u'"';
    QString inner = name.mid(1).toString();
    if (inner.endsWith(closing))
        inner.chop(1);
    return inner.replace(QString(2, closing), QString(closing));
}

Path path(const KNSQLTokens &tokens, qsizetype index, qsizetype end)
{
    Path result{{}, index};
    bool expectsPart = true;
    for (; result.end < end; ++result.end) {
        if (is(tokens, result.end, u'.')) {
            if (expectsPart)
                result.parts.append(QStringLiteral(""));
            expectsPart = true;
        } else if (expectsPart && isName(tokens, result.end)) {
            result.parts.append(text(tokens, result.end));
            expectsPart = false;
        } else {
            break;
        }
    }
    return result;
}

qsizetype type(const KNSQLTokens &tokens, qsizetype index, qsizetype end, QString *text)
{
    const Path name = path(tokens, index, end);
    if (name.end == index)
        return index;
    qsizetype behind = name.end;
    if (is(tokens, behind, u'(') && behind < end)
        behind = behindParentheses(tokens, behind, end);
    const qsizetype from = tokens.at(index).location;
    *text = tokens.text().mid(from, tokens.at(behind - 1).end() - from);
    return behind;
}

qsizetype behindParentheses(const KNSQLTokens &tokens, qsizetype index, qsizetype end)
{
    qsizetype depth = 0;
    for (; index < end; ++index) {
        if (is(tokens, index, u'('))
            ++depth;
        else if (is(tokens, index, u')') && --depth == 0)
            return index + 1;
    }
    return end;
}

} // namespace KNSQLName
