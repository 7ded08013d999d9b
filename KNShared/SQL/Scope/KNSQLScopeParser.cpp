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
            m_frameOf.resize(static_cast<std::size_t>(m_at - m_begin), m_top);
        } else {
            const int top = m_top;
            step();
            m_frameOf.resize(static_cast<std::size_t>(m_at - m_begin), top);
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
    int steps = 0;
    replaceCommonTables(&source, 0, &steps);
    return source;
}

/// Replaces the names of common table expressions, which other statements do not know.
void KNSQLScopeParser::replaceCommonTables(KNSQLSource *source, int depth, int *steps) const
{
    constexpr int MaximumDepth = 8;
    constexpr int MaximumSteps = 1'000; // expressions can name themselves many times
    if (!source->inner || depth > MaximumDepth || ++*steps > MaximumSteps)
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
        replaceCommonTables(&inner, depth + 1, steps);
    }
}

int KNSQLScopeParser::queryOf(int index) const
{
    const Frame &inner = m_frames[static_cast<std::size_t>(index)];
    return inner.kind == Frame::Kind::Query ? index : inner.query;
}

KNSQLFrame &KNSQLScopeParser::query()
{
    return m_frames[static_cast<std::size_t>(queryOf(m_top))];
}

Role KNSQLScopeParser::role(qsizetype index) const
{
    return index >= m_begin && index < m_end ? m_tokens.roleAt(index) : Role::None;
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
    if (piece.kind == SQLTokenKind::Word) {
        const Role last = m_tokens.roleAt(previous);
        return last == Role::None || last == Role::Value || last == Role::End;
    }
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
