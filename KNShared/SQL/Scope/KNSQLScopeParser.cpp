#include "SQL/Scope/KNSQLScopeParser.h"

#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLSelectItem.h"

using Role = KNSQLRole;
using Clause = KNSQLClause;

KNSQLScopeParser::KNSQLScopeParser(const KNSQLTokens &tokens, const KNSQLStatement &statement,
                                   const KNSQLTyped &typed)
    : m_tokens(tokens)
    , m_begin(statement.begin)
    , m_end(std::max(statement.end, statement.begin))
    , m_typed(typed)
    , m_lead(statement.lead)
{
    m_frames.emplace_back();
}

void KNSQLScopeParser::parse(KNSQLScope *scope)
{
    for (m_at = m_begin; m_at < m_end;) {
        if (m_at == m_typed.begin && !m_isCaptured) {
            capture();
            skipTyped();
        } else {
            step();
        }
    }
    if (!m_isCaptured)
        capture();
    for (int index = m_top; index >= 0; index = m_frames[static_cast<std::size_t>(index)].parent) {
        Frame &open = m_frames[static_cast<std::size_t>(index)];
        finishItem(open, m_end);
        if (open.use == Frame::Use::CommonTable)
            use(open);
    }
    fill(scope);
}

KNSQLSource KNSQLScopeParser::result() const
{
    KNSQLSource source = derived(m_frames[static_cast<std::size_t>(queryOf(m_top))]);
    replaceCommonTables(&source, 0);
    return source;
}

/// Replaces the names of common table expressions, which other statements do not know.
void KNSQLScopeParser::replaceCommonTables(KNSQLSource *source, int depth) const
{
    constexpr int MaximumDepth = 8;
    if (!source->inner || depth > MaximumDepth)
        return;
    source->inner = std::make_shared<KNSQLSources>(*source->inner);
    for (KNSQLSource &inner : *source->inner) {
        for (const KNSQLSource &cte : m_ctes) {
            if (inner.path != cte.path)
                continue;
            inner.isResolved = true;
            inner.outputs = cte.outputs;
            inner.columnNames = cte.columnNames;
            inner.inner = cte.inner;
            break;
        }
        replaceCommonTables(&inner, depth + 1);
    }
}

int KNSQLScopeParser::queryOf(int index) const
{
    while (m_frames[static_cast<std::size_t>(index)].kind != Frame::Kind::Query)
        index = m_frames[static_cast<std::size_t>(index)].parent;
    return index;
}

KNSQLFrame &KNSQLScopeParser::query()
{
    return m_frames[static_cast<std::size_t>(queryOf(m_top))];
}

Role KNSQLScopeParser::role(qsizetype index) const
{
    return index >= m_begin && index < m_end ? m_tokens.at(index).role : Role::None;
}

bool KNSQLScopeParser::is(qsizetype index, QChar character) const
{
    return index >= m_begin && index < m_end && KNSQLName::is(m_tokens, index, character);
}

bool KNSQLScopeParser::nameAt(qsizetype index) const
{
    return KNSQLName::isName(m_tokens, index);
}

Clause KNSQLScopeParser::clause()
{
    return frame().kind == Frame::Kind::Sources ? query().clause : frame().clause;
}

void KNSQLScopeParser::setClause(Clause clause)
{
    leaveParentheses();
    Frame &current = query();
    if (current.clause == Clause::SelectList)
        finishItem(current, m_at);
    current.clause = clause;
    current.expectsSource = false;
    current.mayHaveAlias = false;
}

/// A clause cannot begin in the parentheses of an expression: they lack their end.
void KNSQLScopeParser::leaveParentheses()
{
    while (frame().kind != Frame::Kind::Query && frame().kind != Frame::Kind::Sources)
        m_top = frame().parent;
}

void KNSQLScopeParser::capture()
{
    m_isCaptured = true;
    m_captured.frame = m_top;
    m_captured.query = queryOf(m_top);
    m_captured.clause = clause();
    m_captured.previous = m_typed.begin > m_begin ? m_typed.begin - 1 : -1;
    m_captured.isBehindOperand = isBehindOperand();
    m_captured.expectsSource = query().expectsSource && clause() == Clause::From;
    m_captured.isTargetKnown = !m_target.path.isEmpty();
    m_captured.listed = frame().names;
    m_captured.sources = query().sources.size();
}

bool KNSQLScopeParser::isBehindOperand() const
{
    const qsizetype previous = m_captured.previous;
    if (previous < m_begin)
        return false;
    const KNSQLPiece &piece = m_tokens.at(previous);
    if (piece.kind == SQLTokenKind::Number || is(previous, u')')) {
        qsizetype opener = previous;
        for (qsizetype depth = 0; is(previous, u')') && opener > m_begin; --opener) {
            depth += is(opener, u')') ? 1 : is(opener, u'(') ? -1 : 0;
            if (depth == 0)
                break;
        }
        return role(opener - 1) != Role::Top;
    }
    if (is(previous, u'*')) {
        const Role before = role(previous - 1);
        return before == Role::Select || before == Role::Quantifier || is(previous - 1, u',') ||
               is(previous - 1, u'.') || before == Role::Output;
    }
    if (piece.kind == SQLTokenKind::Operator)
        return false;
    if (piece.kind == SQLTokenKind::Word)
        return piece.role == Role::None || piece.role == Role::Value || piece.role == Role::End;
    return true;
}

/// Continues behind the typed name. It counts as a name where an alias may follow it.
void KNSQLScopeParser::skipTyped()
{
    m_at = m_typed.end;
    Frame &current = query();
    if (m_typed.end == m_typed.begin || !m_captured.expectsSource)
        return;
    KNSQLSource source;
    source.path = KNSQLName::path(m_tokens, m_typed.begin, m_typed.end).parts;
    source.isResolved = true; // the name is not complete
    current.sources.append(source);
    current.expectsSource = false;
    current.mayHaveAlias = true;
}

void KNSQLScopeParser::step()
{
    if (is(m_at, u'('))
        return open();
    if (is(m_at, u')'))
        return close();
    if (is(m_at, u','))
        return comma();
    const Role current = role(m_at);
    if (current == Role::None)
        return readName();
    readWord(current);
    ++m_at;
}

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
