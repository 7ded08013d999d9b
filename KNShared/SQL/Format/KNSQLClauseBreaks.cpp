#include "SQL/Format/KNSQLClauseBreaks.h"

namespace {

using Role = KNSQLRole;

bool isQuery(Role lead)
{
    return lead == Role::Select || lead == Role::With || lead == Role::Insert || lead == Role::Values;
}

bool isChange(Role lead)
{
    return lead == Role::Insert || lead == Role::Update || lead == Role::Delete || lead == Role::Merge ||
           lead == Role::With;
}

} // namespace

/// The role of the token that many steps before, comments left out.
KNSQLRole KNSQLClauseBreaks::roleBefore(qsizetype index, int steps) const
{
    while (--index >= 0)
        if (!m_tokens[index].isComment() && --steps == 0)
            return m_tokens[index].role;
    return Role::None;
}

KNSQLRole KNSQLClauseBreaks::roleBehind(qsizetype index) const
{
    while (++index < m_tokens.size())
        if (!m_tokens[index].isComment())
            return m_tokens[index].role;
    return Role::None;
}

bool KNSQLClauseBreaks::isBehindParenthesis(qsizetype index) const
{
    return index + 1 < m_tokens.size() && m_tokens[index + 1].is(u'(');
}

/// The first of the words of a join: LEFT OUTER JOIN, INNER HASH JOIN, CROSS APPLY, JOIN.
bool KNSQLClauseBreaks::beginsJoin(qsizetype index) const
{
    const Role role = m_tokens[index].role;
    if (roleBefore(index) == Role::JoinKind)
        return false;
    if (role == Role::JoinKind) // not the function LEFT(...)
        return !isBehindParenthesis(index) && index > 0 && !m_tokens[index - 1].is(u',');
    return roleBefore(index, 2) != Role::JoinKind;
}

bool KNSQLClauseBreaks::begins(qsizetype index, KNSQLRole lead) const
{
    const Role role = m_tokens[index].role;
    const Role before = roleBefore(index);
    switch (role) {
    case Role::From:
        return (isQuery(lead) || isChange(lead)) && before != Role::Delete;
    case Role::Where:
    case Role::Having:
    case Role::SetOperator:
        return true;
    case Role::Join:
    case Role::Apply:
    case Role::JoinKind:
        return (isQuery(lead) || isChange(lead)) && beginsJoin(index);
    case Role::Group:
    case Role::Order:
        return roleBehind(index) == Role::By;
    case Role::Select:
        return isQuery(lead) || isChange(lead);
    case Role::Insert:
    case Role::Update:
    case Role::Delete:
    case Role::Merge:
        return lead == Role::With && before != Role::Then && before != Role::Set;
    case Role::Into:
        return lead == Role::Select;
    case Role::Values:
        return lead == Role::Insert && before != Role::Value;
    case Role::Set:
        return lead == Role::Update || (lead == Role::With && before != Role::Update);
    case Role::Output:
        return isChange(lead);
    case Role::Using:
    case Role::When:
        return lead == Role::Merge;
    case Role::Option:
        return isBehindParenthesis(index);
    default:
        return false;
    }
}

qsizetype KNSQLClauseBreaks::endOf(qsizetype from, qsizetype end, KNSQLRole lead) const
{
    for (qsizetype index = from; index < end; ++index) {
        if (index > from && (m_tokens[index].startsStatement || m_tokens[index].is(u';') ||
                             m_tokens[index].is(u')') || begins(index, lead)))
            return index;
        if (m_tokens[index].match >= 0)
            index = m_tokens[index].match;
    }
    return end;
}
