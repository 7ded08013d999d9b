// The part of the parser that fills the scope from the state at the caret.

#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLScopeParser.h"

using Role = KNSQLRole;
using Clause = KNSQLClause;
using Expected = KNSQLExpected;

const QList<KNSQLOutput> &KNSQLScopeParser::outputsOf(const Frame &query) const
{
    return query.firstPart >= 0 ? m_frames[static_cast<std::size_t>(query.firstPart)].outputs : query.outputs;
}

KNSQLSource KNSQLScopeParser::derived(const Frame &query) const
{
    KNSQLSource source;
    source.isResolved = true;
    source.outputs = outputsOf(query);
    const Frame &first = query.firstPart >= 0 ? m_frames[static_cast<std::size_t>(query.firstPart)] : query;
    source.inner = std::make_shared<KNSQLSources>(first.sources);
    return source;
}

void KNSQLScopeParser::fill(KNSQLScope *scope) const
{
    scope->isCompletable = true;
    scope->clause = m_captured.clause;
    scope->target = m_target;
    scope->usedColumns = m_captured.listed;
    scope->routine = m_routine;
    scope->ctes = m_ctes;
    scope->outputs = outputsOf(m_frames[static_cast<std::size_t>(m_captured.query)]);
    fillSources(scope);
    fillExpected(scope);
}

void KNSQLScopeParser::fillSources(KNSQLScope *scope) const
{
    bool isVisible = true;
    for (int index = m_captured.query; index >= 0 && isVisible;) {
        const Frame &query = m_frames[static_cast<std::size_t>(index)];
        scope->sources += query.sources;
        if (index == m_captured.query)
            scope->innerSources = scope->sources.size();
        isVisible = query.seesOuter;
        index = query.parent < 0 ? -1 : queryOf(query.parent);
    }
    scope->joinedSource = m_captured.clause == Clause::On ? m_captured.sources - 1 : -1;
    const bool changesTarget =
        m_change == Role::Update || m_change == Role::Delete || m_change == Role::Merge;
    if (!changesTarget || m_target.path.isEmpty())
        return;
    // The target may be one of the sources, by its name or alias.
    for (const KNSQLSource &source : std::as_const(scope->sources)) {
        if (m_target.path.size() == 1 &&
            source.visibleName().compare(m_target.path.first(), Qt::CaseInsensitive) == 0) {
            scope->target = source;
            return;
        }
    }
    if (m_frames[static_cast<std::size_t>(m_captured.query)].parent >= 0) { // a subquery
        scope->sources.append(m_target);
        return;
    }
    scope->sources.prepend(m_target);
    ++scope->innerSources;
    if (scope->joinedSource >= 0)
        ++scope->joinedSource;
}

/// Places that the word before decides. True if there is nothing more to find out.
bool KNSQLScopeParser::fillAfterWord(KNSQLScope *scope, Role previous) const
{
    const auto only = [scope](Clause clause) {
        scope->clause = clause;
        return false;
    };
    switch (previous) {
    case Role::As:
        if (scope->clause == Clause::Type || scope->clause == Clause::Declare)
            return only(Clause::Type);
        if (scope->clause == Clause::ModuleTarget ||
            (scope->clause == Clause::NewName && m_lead == Role::Create))
            return only(Clause::Statement);
        scope->isCompletable = false;
        return true;
    case Role::Group:
    case Role::Order:
    case Role::Partition:
        scope->words = QStringList{QStringLiteral("BY")};
        return true;
    case Role::When:
    case Role::Then:
        if (scope->clause != Clause::MergeWhen)
            return false;
        scope->words = m_tokens.dialect().clauses.value(Clause::MergeWhen).beginWords;
        return true;
    case Role::For:
        if (scope->clause != Clause::For && scope->clause != Clause::Pivot)
            scope->expected = Expected::Objects;
        return scope->expected != Expected::Nothing;
    case Role::JoinKind:
        return only(Clause::Join);
    case Role::SetOperator:
        return only(Clause::SetOperation);
    default:
        return false;
    }
}

void KNSQLScopeParser::fillExpected(KNSQLScope *scope) const
{
    const Role previous = role(m_captured.previous);
    if (fillAfterWord(scope, previous))
        return;
    const bool isQualified = m_typed.end > m_typed.begin &&
                             m_tokens.at(m_typed.begin).kind != SQLTokenKind::Variable &&
                             KNSQLName::is(m_tokens, m_typed.begin + 1, u'.');
    const bool isBehindOperand = m_captured.isBehindOperand && !isQualified;
    if (scope->clause == Clause::NewName || (scope->clause == Clause::Declare && !isBehindOperand) ||
        (scope->clause == Clause::With && !isBehindOperand && previous != Role::As)) {
        scope->isCompletable = scope->clause == Clause::NewName && isBehindOperand;
        if (!scope->isCompletable)
            return;
    }
    if (scope->clause == Clause::ColumnDefinition) {
        const auto beginsItem = [this](qsizetype index) { return is(index, u'(') || is(index, u','); };
        if (beginsItem(m_captured.previous)) { // the name of a column
            scope->isCompletable = false;
            return;
        }
        if (beginsItem(m_captured.previous - 1) && isBehindOperand)
            scope->expected = m_tokens.dialect().clauses.value(Clause::Type).expected;
        else
            scope->words = m_tokens.dialect().clauses.value(Clause::ColumnDefinition).followWords;
        return;
    }
    const bool listsColumns = scope->clause == Clause::InsertColumns || scope->clause == Clause::Columns;
    const KNSQLClauseRule rule = m_tokens.dialect().clauses.value(scope->clause);
    const bool isTargetPlace = scope->clause == Clause::InsertTarget ||
                               scope->clause == Clause::UpdateTarget ||
                               scope->clause == Clause::DeleteTarget ||
                               scope->clause == Clause::MergeTarget || scope->clause == Clause::TableTarget;
    const bool isFirstArgument = scope->clause == Clause::Arguments && m_routineEnd == m_typed.begin;
    const bool isBehindVariable = scope->clause == Clause::Type && m_captured.previous >= 0 &&
                                  m_tokens.at(m_captured.previous).kind == SQLTokenKind::Variable;
    const bool isBehind = isFirstArgument || isBehindVariable ? false
                          : scope->clause == Clause::From     ? !m_captured.expectsSource
                          : isTargetPlace                     ? m_captured.isTargetKnown && isBehindOperand
                                                              : isBehindOperand;
    if (isBehind && !listsColumns) {
        scope->words = rule.followWords;
        scope->isInsertList = scope->clause == Clause::InsertTarget && m_insertColumns.isEmpty();
        scope->isBehindStar = scope->clause == Clause::SelectList && m_captured.previous >= 0 &&
                              KNSQLName::is(m_tokens, m_captured.previous, u'*');
        return;
    }
    if (isBehind) // a name follows the comma only
        return;
    scope->expected = rule.expected;
    scope->words = rule.beginWords;
    const bool beginsAssignment = previous == Role::Set || KNSQLName::is(m_tokens, m_captured.previous, u',');
    scope->isAssigned =
        scope->clause == Clause::Set && beginsAssignment && m_captured.frame == m_captured.query;
    scope->isJoinTarget = scope->clause == Clause::From && previous == Role::Join;
    if (m_captured.previous >= 0 && KNSQLName::is(m_tokens, m_captured.previous, u'(') &&
        rule.expected.testFlag(Expected::Columns) && !listsColumns)
        scope->words.prepend(QStringLiteral("SELECT"));
}
