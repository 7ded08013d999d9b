#pragma once

#include "SQL/Scope/KNSQLFrame.h"
#include "SQL/Scope/KNSQLScope.h"
#include "SQL/Scope/KNSQLStatements.h"

#include <QSet>

#include <deque>
#include <vector>

/// The tokens of the name at the caret, which may be empty: [begin, end).
struct KNSQLTyped
{
    qsizetype begin = 0;
    qsizetype end = 0;
};

/// An alias of a source and the tokens where it is declared and used, in the order of the text.
struct KNSQLAliasUses
{
    QString name;
    QList<qsizetype> tokens;
};

/// Reads one statement and notes the state at the caret. Sources behind the caret belong to the scope, too.
/// Tokens that do not fit are skipped.
class KNSQLScopeParser
{
public:
    KNSQLScopeParser(const KNSQLTokens &tokens, const KNSQLStatement &statement, const KNSQLTyped &typed);

    /// Fills the scope's clause, names and words.
    void parse(KNSQLScope *scope);
    /// The columns of the query's result and the sources of its stars, after parse().
    KNSQLSource result() const;
    /// The aliases of the statement's sources, and the names of those without one, after parse().
    QList<KNSQLAliasUses> aliases() const;
    QStringList tableNames() const;

private:
    using Frame = KNSQLFrame;
    using Role = KNSQLRole;
    using Clause = KNSQLClause;

    /// The state at the caret.
    struct Captured
    {
        int frame = -1;
        int query = -1;
        Clause clause = Clause::Statement;
        bool isBehindOperand = false;
        bool expectsSource = false;
        bool isTargetKnown = false;
        qsizetype previous = -1; ///< the token before; -1 at the statement's beginning
        QStringList listed;
        qsizetype sources = 0; ///< of the query, before the caret
    };

    Frame &frame() { return m_frames[static_cast<std::size_t>(m_top)]; }
    Frame &query();
    int queryOf(int frame) const;
    Role role(qsizetype index) const;
    bool is(qsizetype index, QChar character) const;
    bool isName(qsizetype index) const { return index < m_end && index >= m_begin && nameAt(index); }
    bool nameAt(qsizetype index) const;
    qsizetype limit() const { return m_at < m_typed.begin ? m_typed.begin : m_end; }
    Clause clause();
    void setClause(Clause clause);

    void capture();
    bool isBehindOperand() const;
    void skipTyped();
    void step();
    void readWord(Role current);
    bool readStatementWord(Role current);
    void readQueryWord(Role current);
    void readSourceWord(Role current);
    void beginSelect();
    void beginPart();
    void readInto();
    void readFrom();
    void readObjectKind(Role current);
    void readName();
    void readSource();
    void readTarget();
    void comma();
    void open();
    Frame frameForParenthesis();
    Frame frameForSource();
    void push(Frame inner);
    void close();
    void use(Frame &closed);
    void finishItem(Frame &query, qsizetype end);
    void leaveParentheses();

    void noteAlias(KNSQLSource *source, qsizetype token);
    bool mayUseAlias(qsizetype index) const;
    qsizetype declarationOf(qsizetype index) const;

    void fill(KNSQLScope *scope) const;
    void fillSources(KNSQLScope *scope) const;
    void fillExpected(KNSQLScope *scope) const;
    bool fillAfterWord(KNSQLScope *scope, Role previous) const;
    const QList<KNSQLOutput> &outputsOf(const Frame &query) const;
    KNSQLSource derived(const Frame &query) const;
    void replaceCommonTables(KNSQLSource *source, int depth, int *steps) const;

    const KNSQLTokens &m_tokens;
    const qsizetype m_begin;
    const qsizetype m_end;
    const KNSQLTyped m_typed;
    const Role m_lead;
    std::deque<Frame> m_frames;
    std::vector<int> m_frameOf;     ///< the frame of each token
    QList<qsizetype> m_aliasTokens; ///< that declare aliases
    QSet<qsizetype> m_tableTokens;  ///< that begin names of sources and targets
    qsizetype m_changedToken = -1;  ///< the target of UPDATE or DELETE, if it is a single name
    int m_top = 0;
    qsizetype m_at = 0;
    qsizetype m_cases = 0;
    bool m_isCaptured = false;
    Captured m_captured;
    KNSQLSources m_ctes;
    KNSQLSource m_target;
    QStringList m_routine;
    qsizetype m_routineEnd = -1; ///< the token behind its name
    QStringList m_insertColumns;
    Role m_change = Role::None; ///< INSERT, UPDATE and so on, also behind WITH
};
