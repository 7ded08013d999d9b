#pragma once

#include "Engine/Emit/Emitter.h"

#include <set>
#include <string>
#include <vector>

namespace SampleServer {

/// Collects the text of an SQLite statement and its parameters.
class StatementText
{
public:
    StatementText() = default;
    /// Columns of the sources `outside` become parameters, which are added to `arguments`.
    StatementText(const std::set<std::string> &outside, std::vector<Bound::ExpressionPtr> &arguments)
        : m_outside(&outside)
        , m_arguments(&arguments)
    {
    }

    void text(const std::string &part) { m_result.sql += part; }
    void parameter(EmittedParameter parameter);
    bool isOutside(const std::string &source) const { return m_outside && m_outside->contains(source); }
    /// Adds a column of an outer source; equal columns share one argument.
    void argument(const Bound::Column &node, const Bound::Expression &expression);
    Emitted take() { return std::move(m_result); }

private:
    Emitted m_result;
    const std::set<std::string> *m_outside = nullptr;
    std::vector<Bound::ExpressionPtr> *m_arguments = nullptr;
};

} // namespace SampleServer
