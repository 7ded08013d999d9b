#pragma once

#include "SQL/Format/KNSQLFormatToken.h"

/// Finds the tokens that begin a clause of a statement or of a query in parentheses.
class KNSQLClauseBreaks
{
public:
    explicit KNSQLClauseBreaks(const QList<KNSQLFormatToken> &tokens)
        : m_tokens(tokens)
    {
    }

    /// Whether a clause begins here. `lead` is the role of the first token of the statement or query; both
    /// are at the same depth of parentheses.
    bool begins(qsizetype index, KNSQLRole lead) const;
    /// The end of the clause that begins at `from`: the next clause, or `end`. Sees parentheses as one token.
    qsizetype endOf(qsizetype from, qsizetype end, KNSQLRole lead) const;

private:
    KNSQLRole roleBefore(qsizetype index, int steps = 1) const;
    KNSQLRole roleBehind(qsizetype index) const;
    bool isBehindParenthesis(qsizetype index) const;
    bool beginsJoin(qsizetype index) const;

    const QList<KNSQLFormatToken> &m_tokens;
};
