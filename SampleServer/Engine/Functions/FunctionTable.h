#pragma once

#include "Engine/Bind/Bound.h"

#include <span>
#include <string_view>

namespace SampleServer::Functions {

using ArgumentList = std::vector<Bound::ExpressionPtr>;

/// A built-in function with a fixed signature.
struct Builtin
{
    std::string_view name; ///< upper case
    int least, most;       ///< number of arguments
    /// One letter per argument, the last one for all further arguments: t text, i int, f float, n number, d
    /// date or time, a any type unchanged.
    std::string_view parameters;
    SqlType (*result)(const ArgumentList &arguments);
    Bound::ScalarFunction function;
    bool nullPropagates = true;
    bool foldable = true;
};

// One table per topic
std::span<const Builtin> stringFunctions();
std::span<const Builtin> mathFunctions();
std::span<const Builtin> textFunctions();
std::span<const Builtin> dateFunctions();
std::span<const Builtin> datePartFunctions();
std::span<const Builtin> systemFunctions();
std::span<const Builtin> sessionFunctions();
std::span<const Builtin> metadataFunctions();
std::span<const Builtin> nameFunctions();

/// Returns the function with an upper-case name; null if there is none.
const Builtin *findBuiltin(std::string_view name);

} // namespace SampleServer::Functions
