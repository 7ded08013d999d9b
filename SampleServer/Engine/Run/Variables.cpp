#include "Engine/Run/Variables.h"
#include "Types/Collation.h"

namespace SampleServer {

void Variables::declare(std::string name, const SqlType &type, Value value)
{
    const std::string key = foldedName(name);
    m_slots[key] = {std::move(name), type, std::move(value)};
}

VariableSlot *Variables::find(std::string_view name)
{
    const auto found = m_slots.find(foldedName(name));
    return found == m_slots.end() ? nullptr : &found->second;
}

const VariableSlot *Variables::find(std::string_view name) const
{
    const auto found = m_slots.find(foldedName(name));
    return found == m_slots.end() ? nullptr : &found->second;
}

std::vector<std::string> Variables::names() const
{
    std::vector<std::string> result;
    for (const auto &[key, slot] : m_slots)
        result.push_back(slot.name);
    return result;
}

} // namespace SampleServer
