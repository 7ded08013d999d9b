#pragma once

#include "Engine/Bound.h"

#include <string>
#include <vector>

namespace SampleServer {

/// What a ? of an emitted statement is bound to: a constant, or a call that SQLite leaves to the engine. Both
/// belong to the bound expression they were emitted from.
struct EmittedParameter
{
    const Bound::Constant *constant = nullptr;
    SqlType type; ///< of the constant
    const Bound::Call *call = nullptr;

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
/// An expression alone, as it would stand in a query.
Emitted emitExpression(const Bound::Expression &expression);
/// SELECT of the given expressions from the sources, for UPDATE and DELETE.
Emitted emitSelection(const std::vector<std::string> &plainColumns,
                      const std::vector<Bound::ExpressionPtr> &expressions,
                      const std::vector<Bound::SourcePtr> &from, const Bound::ExpressionPtr &where,
                      const Bound::ExpressionPtr &limit);

/// " COLLATE x" for a type whose values SQLite must not compare byte by byte, otherwise nothing.
std::string collationOf(const SqlType &type);

} // namespace SampleServer
