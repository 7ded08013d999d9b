#pragma once

#include <cstdint>
#include <vector>

/// One token that a server should not send at this point: of any known code, with lengths and contents that
/// are wrong in most cases. The same value always makes the same token.
std::vector<std::uint8_t> hostileToken(std::uint32_t value);
