// The parts of the parser that read words with a role.

#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLScopeParser.h"

using Role = KNSQLRole;
using Clause = KNSQLClause;

void KNSQLScopeParser::readWord(Role current)
{
    if (current == Role::Case) {
        ++m_cases;
    } else if (current == Role::End && m_cases > 0) {
        --m_cases;
    } else if (m_cases > 0 && (current == Role::When || current == Role::Then || current == Role::Else)) {
        return;
    } else if (!readStatementWord(current)) {
        readQueryWord(current);
    }
}

/// Words that begin a statement or a part of one that is no query.
bool KNSQLScopeParser::readStatementWord(Role current)
{
    const bool isFirst = m_at == m_begin;
    switch (current) {
    case Role::Insert:
    case Role::Update:
    case Role::Delete:
    case Role::Merge:
        if (role(m_at - 1) == Role::Then) { // of a MERGE
            setClause(current == Role::Insert ? Clause::InsertTarget : Clause::MergeWhen);
            return true;
        }
        if (m_change != Role::None || m_lead == Role::Grant || m_lead == Role::Create)
            return true;
        m_change = current;
        setClause(current == Role::Insert   ? Clause::InsertTarget
                  : current == Role::Update ? Clause::UpdateTarget
                  : current == Role::Delete ? Clause::DeleteTarget
                                            : Clause::MergeTarget);
        return true;
    case Role::With:
        if (isFirst)
            setClause(Clause::With);
        return true;
    case Role::Execute:
        setClause(Clause::Execute);
        return true;
    case Role::Declare:
        setClause(Clause::Declare);
        return true;
    case Role::Use:
        setClause(Clause::Use);
        return true;
    case Role::Create:
    case Role::Alter:
    case Role::Drop:
    case Role::Truncate:
        if (m_lead != Role::Alter || isFirst)
            setClause(Clause::ObjectKind);
        return true;
    case Role::Table:
    case Role::Module:
    case Role::ObjectKind:
        readObjectKind(current);
        return true;
    case Role::Statement:
    case Role::Grant:
        setClause(Clause::Expression);
        return true;
    case Role::Else:
    case Role::End:
        setClause(Clause::Statement);
        return true;
    default:
        return false;
    }
}

void KNSQLScopeParser::readObjectKind(Role current)
{
    if (clause() != Clause::ObjectKind)
        return;
    if (m_lead == Role::Create)
        return setClause(Clause::NewName);
    setClause(current == Role::Table    ? Clause::TableTarget
              : current == Role::Module ? Clause::ModuleTarget
                                        : Clause::ObjectTarget);
}

void KNSQLScopeParser::readQueryWord(Role current)
{
    switch (current) {
    case Role::Select:
        return beginSelect();
    case Role::Into:
        return readInto();
    case Role::Where:
        return setClause(Clause::Where);
    case Role::Having:
        return setClause(Clause::Having);
    case Role::Group:
        return setClause(Clause::GroupBy);
    case Role::Order:
        if (frame().clause != Clause::Over)
            setClause(Clause::OrderBy);
        return;
    case Role::Set:
        return setClause(m_change == Role::None && m_lead == Role::Set ? Clause::SetOption : Clause::Set);
    case Role::Values:
        return setClause(Clause::Values);
    case Role::Output:
        if (m_change != Role::None)
            setClause(Clause::Output);
        return;
    case Role::When:
        return setClause(Clause::MergeWhen);
    case Role::SetOperator:
        return setClause(Clause::SetOperation);
    case Role::For:
        // In a select list or a value it belongs to the name of a sequence.
        if (clause() == Clause::From || clause() == Clause::Where || clause() == Clause::On ||
            clause() == Clause::GroupBy || clause() == Clause::Having || clause() == Clause::OrderBy)
            setClause(Clause::For);
        return;
    case Role::Column:
        if (m_lead == Role::Alter)
            setClause(Clause::Columns);
        return;
    case Role::References:
        m_target = {};
        frame().clause = Clause::TableTarget;
        return;
    default:
        readSourceWord(current);
    }
}

void KNSQLScopeParser::readSourceWord(Role current)
{
    switch (current) {
    case Role::From:
        return readFrom();
    case Role::Using:
        if (m_change != Role::Merge)
            return;
        setClause(Clause::From);
        query().expectsSource = true;
        return;
    case Role::JoinKind:
        if (query().clause == Clause::From || query().clause == Clause::On)
            setClause(Clause::Join);
        return;
    case Role::Join:
    case Role::Apply:
        setClause(Clause::From);
        query().expectsSource = true;
        query().isLateral = current == Role::Apply;
        return;
    case Role::On:
        if (m_lead == Role::Create || m_lead == Role::Grant)
            setClause(m_lead == Role::Create ? Clause::TableTarget : Clause::ObjectTarget);
        else if (m_lead != Role::Set)
            setClause(Clause::On);
        return;
    case Role::As:
        if (frame().clause == Clause::Cast)
            frame().clause = Clause::Type;
        return;
    default:
        return;
    }
}

void KNSQLScopeParser::beginSelect()
{
    leaveParentheses();
    if (query().clause != Clause::Statement)
        beginPart();
    query().clause = Clause::SelectList;
    query().itemBegin = m_at + 1;
}

/// Begins the next query of a UNION, or the query of an INSERT or WITH: it has sources of its own.
void KNSQLScopeParser::beginPart()
{
    const int before = queryOf(m_top);
    const Frame &old = m_frames[static_cast<std::size_t>(before)];
    Frame part;
    part.use = old.use;
    part.parent = old.parent;
    part.seesOuter = old.seesOuter;
    if (old.clause == Clause::SetOperation)
        part.firstPart = old.firstPart >= 0 ? old.firstPart : before;
    m_frames.push_back(part);
    m_top = static_cast<int>(m_frames.size()) - 1;
}

void KNSQLScopeParser::readInto()
{
    switch (clause()) {
    case Clause::InsertTarget:
    case Clause::MergeTarget:
        return;
    case Clause::Output:
        return setClause(Clause::TableTarget);
    default:
        setClause(Clause::NewName);
    }
}

void KNSQLScopeParser::readFrom()
{
    const bool isTargetTyped = m_isCaptured && m_typed.end == m_at;
    if (clause() == Clause::DeleteTarget && m_target.path.isEmpty() && role(m_at - 1) != Role::None &&
        !isTargetTyped)
        return; // DELETE FROM t
    setClause(Clause::From);
    query().expectsSource = true;
    query().isLateral = false;
}
