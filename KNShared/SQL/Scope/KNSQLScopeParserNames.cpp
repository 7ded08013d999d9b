// The parts of the parser that read names, lists and parentheses.

#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLScopeParser.h"
#include "SQL/Scope/KNSQLSelectItem.h"

using Role = KNSQLRole;
using Clause = KNSQLClause;

void KNSQLScopeParser::readName()
{
    const SQLTokenKind kind = m_tokens.at(m_at).kind;
    Frame &current = frame();
    const bool isHeader =
        (m_lead == Role::Create || m_lead == Role::Alter) && current.kind == Frame::Kind::Query;
    if (kind == SQLTokenKind::Variable && (clause() == Clause::Declare || isHeader)) {
        setClause(Clause::Type);
    } else if (is(m_at, u'=') && current.kind == Frame::Kind::Query &&
               ((clause() == Clause::Type && m_lead == Role::Declare) || clause() == Clause::SetOption)) {
        setClause(Clause::Expression);
    } else if (clause() == Clause::From && query().expectsSource &&
               (nameAt(m_at) || kind == SQLTokenKind::Variable)) {
        return readSource();
    } else if (clause() == Clause::From && query().mayHaveAlias && nameAt(m_at)) {
        noteAlias(&query().sources.last(), m_at);
        query().mayHaveAlias = false;
    } else if (current.kind == Frame::Kind::Names && nameAt(m_at)) {
        current.names.append(KNSQLName::text(m_tokens, m_at));
    } else if (current.kind == Frame::Kind::Query && clause() == Clause::With && nameAt(m_at)) {
        KNSQLSource cte;
        cte.path = QStringList{KNSQLName::text(m_tokens, m_at)};
        cte.location = m_tokens.at(m_at).location;
        cte.isResolved = true;
        m_ctes.append(cte);
    } else if (nameAt(m_at) || kind == SQLTokenKind::Variable) {
        return readTarget();
    }
    ++m_at;
}

void KNSQLScopeParser::noteAlias(KNSQLSource *source, qsizetype token)
{
    source->alias = KNSQLName::text(m_tokens, token);
    source->aliasToken = token;
    source->location = m_tokens.at(token).location;
    m_aliasTokens.append(token);
}

void KNSQLScopeParser::readSource()
{
    m_tableTokens.insert(m_at);
    KNSQLSource source;
    source.location = m_tokens.at(m_at).location;
    qsizetype behind = m_at + 1;
    if (nameAt(m_at)) {
        const KNSQLName::Path path = KNSQLName::path(m_tokens, m_at, limit());
        source.path = path.parts;
        behind = path.end;
    } else {
        source.path = QStringList{m_tokens.textAt(m_at).toString()};
    }
    source.isFunction = is(behind, u'(');
    query().sources.append(source);
    query().expectsSource = false;
    query().mayHaveAlias = true;
    m_at = behind;
}

/// Reads the name of the table or procedure that the statement is about, if it stands here.
void KNSQLScopeParser::readTarget()
{
    const qsizetype begin = m_at++;
    const bool isChanged =
        m_target.path.isEmpty() && (clause() == Clause::UpdateTarget || clause() == Clause::DeleteTarget);
    const bool isVariable = m_tokens.at(begin).kind == SQLTokenKind::Variable;
    const auto path = [&] {
        const qsizetype limit = m_typed.begin > begin ? m_typed.begin : m_end;
        const KNSQLName::Path read = KNSQLName::path(m_tokens, begin, limit);
        m_at = std::max(read.end, m_at);
        m_tableTokens.insert(begin);
        if (isChanged && read.parts.size() == 1)
            m_changedToken = begin;
        return isVariable ? QStringList{m_tokens.textAt(begin).toString()} : read.parts;
    };
    switch (clause()) {
    case Clause::Execute:
        if (!isVariable) {
            m_routine = path();
            m_routineEnd = m_at;
            setClause(Clause::Arguments);
        }
        return;
    case Clause::MergeTarget:
        if (m_target.path.isEmpty())
            m_target.path = path();
        else if (role(begin - 1) != Role::With)
            noteAlias(&m_target, begin);
        return;
    case Clause::InsertTarget:
    case Clause::UpdateTarget:
    case Clause::DeleteTarget:
    case Clause::TableTarget:
        if (m_target.path.isEmpty())
            m_target.path = path();
        else if (clause() == Clause::TableTarget && role(begin - 1) == Role::References)
            m_target.path = path();
        if (m_lead == Role::Alter && clause() == Clause::TableTarget)
            setClause(Clause::AlterTable);
        return;
    default:
        return;
    }
}

void KNSQLScopeParser::comma()
{
    Frame &current = frame();
    if (current.kind == Frame::Kind::Query) {
        if (current.clause == Clause::SelectList) {
            finishItem(current, m_at);
            current.itemBegin = m_at + 1;
        } else if (current.clause == Clause::From || current.clause == Clause::On) {
            setClause(Clause::From);
            query().expectsSource = true;
            query().isLateral = false;
        } else if (m_lead == Role::Declare) {
            setClause(Clause::Declare);
        }
    } else if (current.clause == Clause::Type && current.kind == Frame::Kind::Parentheses) {
        current.clause = Clause::Cast; // the arguments behind the type
    } else if (current.kind == Frame::Kind::Definitions) {
        current.clause = Clause::ColumnDefinition;
    }
    ++m_at;
}

void KNSQLScopeParser::open()
{
    push(frameForParenthesis());
    ++m_at;
}

void KNSQLScopeParser::push(Frame inner)
{
    inner.parent = m_top;
    inner.query = queryOf(m_top);
    m_frames.push_back(std::move(inner));
    m_top = static_cast<int>(m_frames.size()) - 1;
}

KNSQLFrame KNSQLScopeParser::frameForParenthesis()
{
    const Role previous = role(m_at - 1);
    const Role next = m_at + 1 == m_typed.begin ? Role::None : role(m_at + 1);
    Frame inner;
    inner.kind = Frame::Kind::Parentheses;
    inner.clause = clause();
    if (inner.clause == Clause::With && previous == Role::As) {
        inner.kind = Frame::Kind::Query;
        inner.use = Frame::Use::CommonTable;
        inner.seesOuter = false;
        inner.clause = Clause::Statement;
    } else if (inner.clause == Clause::With) {
        inner.kind = Frame::Kind::Names;
        inner.use = Frame::Use::NamesOfCommonTable;
        inner.clause = Clause::NewName;
    } else if (previous == Role::With) {
        inner.clause = Clause::Hint;
    } else if (previous == Role::Over || previous == Role::Group) {
        inner.clause = Clause::Over;
    } else if (previous == Role::Option) {
        inner.clause = Clause::Option;
    } else if (previous == Role::Pivot) {
        inner.clause = Clause::Pivot;
        inner.use = Frame::Use::Pivot;
    } else if (next == Role::Select || next == Role::With) {
        if (query().expectsSource && inner.clause == Clause::From)
            return frameForSource();
        inner.kind = Frame::Kind::Query;
        inner.clause = Clause::Statement;
    } else if (inner.clause == Clause::From) {
        return frameForSource();
    } else if (previous == Role::Cast || previous == Role::TypeFirst) {
        inner.clause = previous == Role::Cast ? Clause::Cast : Clause::Type;
    } else if (previous == Role::Top) {
        inner.clause = Clause::Expression;
    } else if (inner.clause == Clause::InsertTarget) {
        inner.kind = Frame::Kind::Names;
        inner.use = Frame::Use::InsertList;
        inner.clause = Clause::InsertColumns;
    } else if ((inner.clause == Clause::NewName && m_lead == Role::Create) || previous == Role::Table) {
        inner.kind = Frame::Kind::Definitions;
        inner.clause = Clause::ColumnDefinition;
    } else if (inner.clause == Clause::TableTarget) {
        inner.kind = Frame::Kind::Names;
        inner.clause = Clause::Columns;
    }
    return inner;
}

/// Parentheses behind FROM and JOIN: a subquery, joined sources, or the arguments of a table function.
KNSQLFrame KNSQLScopeParser::frameForSource()
{
    Frame inner;
    Frame &outer = query();
    if (outer.expectsSource) {
        const bool isJoin = isName(m_at + 1) || is(m_at + 1, u'(');
        inner.kind = isJoin && m_at + 1 != m_typed.begin ? Frame::Kind::Sources : Frame::Kind::Query;
        inner.use = inner.kind == Frame::Kind::Query ? Frame::Use::Source : Frame::Use::None;
        inner.seesOuter = outer.isLateral;
        inner.clause = Clause::Statement;
        return inner;
    }
    const bool isArguments =
        !outer.sources.isEmpty() && outer.sources.last().isFunction && outer.sources.last().alias.isNull();
    const bool namesColumns =
        !outer.sources.isEmpty() && (outer.sources.last().isFunction || outer.sources.last().isResolved);
    inner.kind = isArguments || !namesColumns ? Frame::Kind::Parentheses : Frame::Kind::Names;
    inner.clause = isArguments ? Clause::Cast : namesColumns ? Clause::NewName : Clause::Hint;
    inner.use = inner.kind == Frame::Kind::Names ? Frame::Use::NamesOfSource : Frame::Use::None;
    return inner;
}

void KNSQLScopeParser::close()
{
    Frame &closed = frame();
    if (closed.parent < 0) { // no parenthesis is open
        ++m_at;
        return;
    }
    finishItem(closed, m_at);
    m_top = closed.parent;
    use(closed);
    ++m_at;
}

void KNSQLScopeParser::use(Frame &closed)
{
    switch (closed.use) {
    case Frame::Use::Source:
        query().sources.append(derived(closed));
        query().expectsSource = false;
        query().mayHaveAlias = true;
        break;
    case Frame::Use::CommonTable:
        if (!m_ctes.isEmpty()) {
            KNSQLSource body = derived(closed);
            body.path = m_ctes.last().path;
            body.columnNames = m_ctes.last().columnNames;
            body.location = m_ctes.last().location;
            m_ctes.last() = body;
        }
        break;
    case Frame::Use::NamesOfSource:
        if (!query().sources.isEmpty())
            query().sources.last().columnNames = closed.names;
        break;
    case Frame::Use::NamesOfCommonTable:
        if (!m_ctes.isEmpty())
            m_ctes.last().columnNames = closed.names;
        break;
    case Frame::Use::InsertList:
        m_insertColumns = closed.names;
        break;
    case Frame::Use::Pivot: {
        KNSQLSource pivot;
        pivot.isResolved = true;
        pivot.inner = std::make_shared<KNSQLSources>(query().sources);
        pivot.outputs = {{.name = {}, .type = {}, .isStar = true, .qualifier = {}}};
        pivot.outputs += closed.outputs;
        query().sources = {pivot};
        query().clause = Clause::From;
        query().mayHaveAlias = true;
        break;
    }
    case Frame::Use::None:
        if (closed.kind == Frame::Kind::Sources)
            query().mayHaveAlias = false;
        break;
    }
}

void KNSQLScopeParser::finishItem(Frame &query, qsizetype end)
{
    if (query.kind != Frame::Kind::Query || query.itemBegin < 0 || query.clause != Clause::SelectList)
        return;
    // The name that is being typed is not a column yet.
    const bool isTyped = m_isCaptured && m_typed.begin >= query.itemBegin && m_typed.begin < end;
    const qsizetype itemEnd = isTyped && m_typed.end > m_typed.begin ? m_typed.begin : end;
    if (const auto output = KNSQLSelectItem(m_tokens, query.itemBegin, itemEnd))
        query.outputs.append(*output);
    query.itemBegin = -1;
}
