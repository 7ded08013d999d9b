#include "SQL/Scope/KNSQLStatements.h"

#include "SQL/Scope/KNSQLName.h"

namespace {

using Role = KNSQLRole;

class Finder
{
public:
    Finder(const KNSQLTokens &tokens, qsizetype caret)
        : m_tokens(tokens)
        , m_caret(caret)
    {
    }

    KNSQLStatements::Found find()
    {
        begin(0);
        for (m_at = 0; m_at < m_tokens.size() && !m_isDone; ++m_at)
            read();
        if (!m_isDone)
            finish(m_tokens.size());
        return m_found;
    }

private:
    Role role(qsizetype index) const
    {
        return index >= 0 && index < m_tokens.size() ? m_tokens.at(index).role : Role::None;
    }
    bool is(qsizetype index, QChar character) const { return KNSQLName::is(m_tokens, index, character); }
    bool isText(qsizetype index, QLatin1String word) const
    {
        return index >= 0 && index < m_tokens.size() &&
               m_tokens.textAt(index).compare(word, Qt::CaseInsensitive) == 0;
    }

    void begin(qsizetype index)
    {
        m_statement = {index, index, Role::None, false};
        m_isEmpty = true;
        m_depth = m_cases = 0;
        m_hasQuery = m_hasSet = m_hasAs = m_isModule = m_awaitsQuery = false;
    }

    /// Ends the current statement before `end`; the last one is that of the caret.
    void finish(qsizetype end)
    {
        m_statement.end = end;
        m_found.statements.append(m_statement);
        m_isDone = end >= m_caret;
    }

    void read()
    {
        if (m_tokens.isBatchSeparator(m_at))
            return endBatch();
        if (is(m_at, u';')) {
            finish(m_at);
            return begin(m_at + 1);
        }
        if (!m_isEmpty && startsStatement()) {
            finish(m_at);
            if (m_isDone)
                return;
            begin(m_at);
        }
        if (m_isEmpty)
            m_statement.lead = role(m_at);
        m_isEmpty = false;
        note();
    }

    void endBatch()
    {
        finish(m_at);
        if (m_isDone)
            return;
        if (m_at + 1 < m_tokens.size() && m_tokens.at(m_at + 1).kind == SQLTokenKind::Number)
            ++m_at; // how often the batch runs
        begin(m_at + 1);
        m_found.batchBegin = m_found.statements.size();
    }

    void note()
    {
        const Role current = role(m_at);
        if (is(m_at, u'('))
            ++m_depth;
        else if (is(m_at, u')') && m_depth > 0)
            --m_depth;
        else if (current == Role::Case)
            ++m_cases;
        else if (current == Role::End && m_cases > 0)
            --m_cases;
        else if (current == Role::Module)
            m_isModule = true;
        else if (m_depth == 0)
            noteOuter(current);
        const bool isTemporary =
            m_tokens.at(m_at).kind == SQLTokenKind::Word && m_tokens.textAt(m_at).startsWith(u'#');
        if (isTemporary && (role(m_at - 1) == Role::Into || role(m_at - 1) == Role::Table))
            m_statement.mentionsTemporaryTable = true;
    }

    void noteOuter(Role current)
    {
        const bool isMain = current == Role::Select || current == Role::Insert || current == Role::Update ||
                            current == Role::Delete || current == Role::Merge || current == Role::Values ||
                            current == Role::Execute;
        if (isMain && !(m_statement.lead == current && m_at == m_statement.begin))
            m_hasQuery = true;
        if (current == Role::Insert)
            m_awaitsQuery = true;
        else if (isMain)
            m_awaitsQuery = false;
        if (current == Role::Set)
            m_hasSet = true;
        if (current == Role::As)
            m_hasAs = true;
    }

    bool isDefinition() const { return m_statement.lead == Role::Create || m_statement.lead == Role::Alter; }

    bool startsStatement() const
    {
        const Role previous = role(m_at - 1);
        const Role current = role(m_at);
        if (isDefinition() && m_isModule && previous == Role::As && m_depth == 0)
            return true;
        switch (current) {
        case Role::Select:
            return startsWithSelect(previous);
        case Role::Insert:
        case Role::Update:
        case Role::Delete:
            return startsChange(previous);
        case Role::Merge:
            return role(m_at + 1) != Role::Join && !isWithMain();
        case Role::Execute:
            return !m_awaitsQuery && previous != Role::With && !isGranted(previous);
        case Role::Set:
            return startsWithSet(previous);
        case Role::With:
            return startsWithList();
        case Role::Statement:
            return startsOther(previous);
        case Role::End:
            return m_cases == 0;
        case Role::Else:
            return m_cases == 0;
        case Role::Alter:
            return previous != Role::Operator && !isGranted(previous) && // CREATE OR ALTER
                   !(m_statement.lead == Role::Alter && role(m_at + 1) == Role::Column);
        case Role::Drop:
            return !(m_statement.lead == Role::Alter && role(m_at + 1) != Role::Table &&
                     role(m_at + 1) != Role::Module && role(m_at + 1) != Role::ObjectKind);
        case Role::Declare:
        case Role::Use:
        case Role::Create:
        case Role::Truncate:
        case Role::Grant:
            return !isGranted(previous);
        default:
            return false;
        }
    }

    bool isGranted(Role previous) const
    {
        return m_statement.lead == Role::Grant && (previous == Role::Grant || is(m_at - 1, u','));
    }

    bool isWithMain() const { return m_statement.lead == Role::With && !m_hasQuery && m_depth == 0; }

    bool startsWithSelect(Role previous) const
    {
        if (is(m_at - 1, u'(') || previous == Role::SetOperator || isGranted(previous) || isWithMain())
            return false;
        if (previous == Role::Quantifier && role(m_at - 2) == Role::SetOperator)
            return false;
        return !(m_awaitsQuery && m_depth == 0);
    }

    bool startsChange(Role previous) const
    {
        if (previous == Role::Then || previous == Role::On || previous == Role::For || isGranted(previous) ||
            isWithMain())
            return false;
        if (isDefinition() && m_isModule && !m_hasAs) // the events of a trigger
            return false;
        return !(role(m_at) == Role::Update && is(m_at + 1, u'('));
    }

    bool startsWithSet(Role previous) const
    {
        if (previous == Role::Delete || previous == Role::Update) // ON DELETE SET NULL, THEN UPDATE SET
            return false;
        return !(m_statement.lead == Role::Update && !m_hasSet) && !isWithUpdate() &&
               m_statement.lead != Role::Alter;
    }

    bool isWithUpdate() const { return m_statement.lead == Role::With && m_hasQuery && !m_hasSet; }

    /// WITH before common table expressions, not before hints and options.
    bool startsWithList() const
    {
        const bool namesExpression =
            KNSQLName::isName(m_tokens, m_at + 1) && (role(m_at + 2) == Role::As || is(m_at + 2, u'('));
        const bool isHeader = isDefinition() && m_isModule && !m_hasAs; // WITH SCHEMABINDING AS
        return m_depth == 0 && namesExpression && !isHeader;
    }

    bool startsOther(Role previous) const
    {
        if (m_cases > 0 || previous == Role::Grant)
            return false;
        if (isText(m_at, QLatin1String("IF")))
            return m_statement.lead != Role::Drop;
        if (isText(m_at, QLatin1String("FETCH")))
            return !isText(m_at - 1, QLatin1String("ROWS")) && !isText(m_at - 1, QLatin1String("ROW"));
        return true;
    }

    const KNSQLTokens &m_tokens;
    const qsizetype m_caret;
    KNSQLStatements::Found m_found;
    KNSQLStatement m_statement;
    qsizetype m_at = 0;
    qsizetype m_depth = 0;
    qsizetype m_cases = 0;
    bool m_isEmpty = true;
    bool m_isDone = false;
    bool m_hasQuery = false;    ///< the main statement of WITH
    bool m_awaitsQuery = false; ///< behind INSERT
    bool m_hasSet = false;
    bool m_hasAs = false;
    bool m_isModule = false;
};

} // namespace

KNSQLStatements::Found KNSQLStatements::upTo(const KNSQLTokens &tokens, qsizetype caret)
{
    return Finder(tokens, caret).find();
}
