#pragma once

#include <cstring>

/// Reads a number at an unaligned address, in the machine's byte order.
template <typename Fixed>
Fixed KNReadFixed(const unsigned char *position)
{
    Fixed value;
    std::memcpy(&value, position, sizeof value);
    return value;
}
