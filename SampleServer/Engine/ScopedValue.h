#pragma once

#include <utility>

namespace SampleServer {

/// Gives a variable another value for as long as it lives, also when an exception passes.
template <typename T>
class ScopedValue
{
public:
    ScopedValue(T &variable, T value)
        : m_variable(variable)
        , m_before(std::exchange(variable, std::move(value)))
    {
    }
    ~ScopedValue() { m_variable = std::move(m_before); }
    ScopedValue(const ScopedValue &) = delete;
    ScopedValue &operator=(const ScopedValue &) = delete;

private:
    T &m_variable;
    T m_before;
};

} // namespace SampleServer
