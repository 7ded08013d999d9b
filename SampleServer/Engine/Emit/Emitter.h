#pragma once

#include "Engine/Bind/Bound.h"

#include <set>
#include <string>
#include <vector>

namespace SampleServer {

/// What a ? of an emitted statement is bound to: a constant, an object of the engine's that SQLite hands back
/// to it, or an argument of a lateral query. The first two belong to the bound query they were emitted from.
struct EmittedParameter
{
    const Bound::Constant *constant = nullptr;
    SqlType type; ///< of the constant
    const Bound::Call *call = nullptr;
    const RowProvider *provider = nullptr;
    const XmlShape *shape = nullptr;
    int argument = -1; ///< from 0

    friend bool operator==(const EmittedParameter &left, const EmittedParameter &right);
};

/// A statement or a part of one in SQLite's language. Every value is a parameter, never part of the text.
struct Emitted
{
    std::string sql;
    std::vector<EmittedParameter> parameters;

    friend bool operator==(const Emitted &, const Emitted &) = default;
};

/// A query as one SELECT of SQLite; its columns are named c1, c2 ... The query must outlive the result.
Emitted emitQuery(const Bound::Query &query);
/// A query that runs by itself although it names columns of sources outside: those become parameters, and
/// are added to `arguments`. `outside` are SQLite's names of these sources.
Emitted emitLateral(const Bound::Query &query, const std::set<std::string> &outside,
                    std::vector<Bound::ExpressionPtr> &arguments);
/// An expression alone, as it would be written in a query.
Emitted emitExpression(const Bound::Expression &expression);
/// SELECT of the given expressions from the sources, for UPDATE and DELETE.
Emitted emitSelection(const std::vector<std::string> &plainColumns,
                      const std::vector<Bound::ExpressionPtr> &expressions,
                      const std::vector<Bound::SourcePtr> &from, const Bound::ExpressionPtr &where,
                      const Bound::ExpressionPtr &limit);

/// " COLLATE x" for a type whose values SQLite must not compare byte by byte, otherwise nothing.
std::string collationOf(const SqlType &type);

} // namespace SampleServer
