#pragma once

#include <utility>

namespace SampleServer {

/// Sets a variable for its own lifetime and restores it, also after an exception.
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
