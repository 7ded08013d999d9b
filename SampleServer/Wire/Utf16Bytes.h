#pragma once

#include "Wire/ProtocolError.h"

#include <cstdint>
#include <cstring>
#include <span>
#include <string>

namespace SampleServer {

/// Converts UTF-16LE bytes to text. Throws ProtocolError if their number is odd.
inline std::u16string utf16From(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() % 2 != 0)
        throw ProtocolError("A text has half a character.");
    std::u16string text(bytes.size() / 2, u'\0');
    if (!bytes.empty())
        std::memcpy(text.data(), bytes.data(), bytes.size());
    return text;
}

} // namespace SampleServer
