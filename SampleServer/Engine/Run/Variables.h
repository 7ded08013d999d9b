#pragma once

#include "Types/SqlType.h"
#include "Types/Value.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace SampleServer {

struct VariableSlot
{
    std::string name; ///< with its @, as declared
    SqlType type;
    Value value;
};

/// The variables of a batch by case-insensitive name.
class Variables
{
public:
    void declare(std::string name, const SqlType &type, Value value);
    /// Returns null if the variable does not exist.
    VariableSlot *find(std::string_view name);
    const VariableSlot *find(std::string_view name) const;
    std::vector<std::string> names() const;

private:
    std::map<std::string, VariableSlot> m_slots; ///< by folded name
};

} // namespace SampleServer
