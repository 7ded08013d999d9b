#pragma once

#include "KNSharedExport.h"
#include "SQL/Scope/KNSQLDialect.h"
#include "SQL/Scope/KNSQLSource.h"

class KNSQLTokens;

/// A variable or parameter that is declared before the caret.
struct KNSQLVariable
{
    QString name; ///< with its @
    QString type;
    qsizetype location = -1; ///< of its declaration in the text
};

/// The place of a caret in a text: the statement, its clause, and what is visible there.
struct KNSQLScope
{
    /// False in strings and comments and where a new name is made: nothing is offered.
    bool isCompletable = false;
    KNSQLClause clause = KNSQLClause::Statement;
    KNSQLExpectations expected = KNSQLExpected::Nothing;
    /// The words of the dialect that can stand there.
    QStringList words;

    qsizetype replaceFrom = 0; ///< the range of the name that is typed
    qsizetype replaceTo = 0;
    QString prefix;        ///< its part before the caret, without an opening quote
    QStringList qualifier; ///< the names before it, without quotes; omitted ones are empty

    KNSQLSources sources;        ///< visible, innermost query first, in the order of the text
    qsizetype innerSources = 0;  ///< how many of them belong to the innermost query
    qsizetype joinedSource = -1; ///< the last source before the caret in ON; -1 elsewhere
    KNSQLSources ctes;           ///< common table expressions that can be named
    KNSQLSources temporaryTables;
    KNSQLSource target;         ///< of INSERT, UPDATE, DELETE, MERGE, and of a list of columns
    QStringList usedColumns;    ///< already in the list of columns
    QList<KNSQLOutput> outputs; ///< of the query, for ORDER BY
    QList<KNSQLVariable> variables;
    QStringList routine; ///< the procedure whose arguments are written
    bool startsStatement = false;
    bool isBehindStar = false; ///< directly behind the star of a select list
    bool isJoinTarget = false; ///< the name of a table behind JOIN
    bool isInsertList = false; ///< behind the name of the table of an INSERT
    bool isAssigned = false;   ///< the column that SET of an UPDATE changes
};

/// Analyses the text of the tokens at a caret. Statements before and behind may be incomplete or wrong. Pure;
/// linear in the number of tokens up to the end of the caret's statement.
KNSHARED_EXPORT KNSQLScope KNAnalyseSQLScope(const KNSQLTokens &tokens, qsizetype caret);

/// The scope of a complete name that begins with a token: the name is part of its statement, and nothing is
/// to be replaced.
KNSHARED_EXPORT KNSQLScope KNSQLScopeOfName(const KNSQLTokens &tokens, qsizetype token);
