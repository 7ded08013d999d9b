#pragma once

#include "SQL/Scope/KNSQLDialect.h"
#include "SQL/Scope/KNSQLSource.h"

/// One level of a statement while it is read: a query, or a pair of parentheses within one.
struct KNSQLFrame
{
    enum class Kind {
        Query,
        Parentheses, ///< of an expression; belongs to the query around it
        Sources,     ///< around joined sources
        Names,       ///< a list of names of columns
        Definitions, ///< of columns
    };
    /// The use of the frame's content when its parenthesis closes.
    enum class Use { None, Source, CommonTable, NamesOfSource, NamesOfCommonTable, InsertList, Pivot };

    Kind kind = Kind::Query;
    Use use = Use::None;
    int parent = -1;
    int query = 0;         ///< the query that parentheses belong to
    bool seesOuter = true; ///< whether a subquery sees the sources around it
    KNSQLClause clause = KNSQLClause::Statement;

    KNSQLSources sources;
    bool expectsSource = false;
    bool isLateral = false;
    bool mayHaveAlias = false; ///< directly behind a source

    QList<KNSQLOutput> outputs;
    qsizetype itemBegin = -1; ///< of the item of the select list; -1 outside of one
    int firstPart = -1;       ///< the frame of the first query of a UNION, whose outputs count
    QStringList names;        ///< of a list
};
