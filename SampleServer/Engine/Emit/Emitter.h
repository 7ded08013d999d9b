#pragma once

#include "Engine/Bind/Bound.h"

#include <set>
#include <string>
#include <vector>

namespace SampleServer {

/// The value bound to a ? of an emitted statement: a constant, an engine object that SQLite passes back, or
/// an argument of a lateral query. The first two belong to the bound query they were emitted from.
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

/// A statement or part of one in SQLite's SQL. Every value is a parameter, never part of the text.
struct Emitted
{
    std::string sql;
    std::vector<EmittedParameter> parameters;

    friend bool operator==(const Emitted &, const Emitted &) = default;
};

/// Emits a query as one SELECT of SQLite with columns named c1, c2 ... The query must outlive the result.
Emitted emitQuery(const Bound::Query &query);
/// Emits a query that references columns of outer sources: these become parameters and are added to
/// `arguments`. `outside` contains SQLite's names of these sources.
Emitted emitLateral(const Bound::Query &query, const std::set<std::string> &outside,
                    std::vector<Bound::ExpressionPtr> &arguments);
/// Emits a single expression as it is written in a query.
Emitted emitExpression(const Bound::Expression &expression);
/// Emits a SELECT of the expressions from the sources, for UPDATE and DELETE.
Emitted emitSelection(const std::vector<std::string> &plainColumns,
                      const std::vector<Bound::ExpressionPtr> &expressions,
                      const std::vector<Bound::SourcePtr> &from, const Bound::ExpressionPtr &where,
                      const Bound::ExpressionPtr &limit);

/// " COLLATE x" for types whose values SQLite must not compare byte by byte, otherwise empty.
std::string collationOf(const SqlType &type);

} // namespace SampleServer
