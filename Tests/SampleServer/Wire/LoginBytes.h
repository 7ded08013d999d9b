#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

/// A client's prelogin and login, written independently of the code that reads them.
namespace LoginBytes {

using Bytes = std::vector<std::uint8_t>;

struct Login
{
    std::uint32_t tdsVersion = 0x74000004;
    std::uint32_t packetSize = 0;
    std::u16string userName = u"sa";
    std::u16string password = u"Sample-1";
    std::u16string database = {};
    Bytes sspi = {};     ///< asks for integrated security when not empty
    Bytes features = {}; ///< asks for features when not empty
};

inline Bytes prelogin(std::uint8_t encryption)
{
    return {0, 0, 11, 0, 6, 1, 0, 17, 0, 1, 0xFF, 1, 2, 3, 4, 5, 6, encryption};
}

inline Bytes login7(const Login &login)
{
    constexpr std::size_t fixedPart = 94;
    Bytes bytes(fixedPart);
    const auto put = [&](std::size_t at, const auto &number) {
        std::memcpy(&bytes[at], &number, sizeof number);
    };
    const auto append = [&](std::size_t at, const Bytes &content, std::size_t unit) {
        put(at, static_cast<std::uint16_t>(bytes.size()));
        put(at + 2, static_cast<std::uint16_t>(content.size() / unit));
        bytes.insert(bytes.end(), content.begin(), content.end());
    };
    const auto units = [](const std::u16string &text) {
        Bytes content(text.size() * 2);
        if (!text.empty())
            std::memcpy(content.data(), text.data(), content.size());
        return content;
    };

    put(4, login.tdsVersion);
    put(8, login.packetSize);
    Bytes password = units(login.password);
    for (std::uint8_t &byte : password)
        byte = static_cast<std::uint8_t>((byte << 4 | byte >> 4) ^ 0xA5);
    append(36, units(u"host"), 2);
    append(40, units(login.userName), 2);
    append(44, password, 2);
    append(48, units(u"application"), 2);
    append(52, units(u"server"), 2);
    if (!login.features.empty()) {
        bytes[27] = 0x10;
        append(56, Bytes(4), 1);
        put(bytes.size() - 4, static_cast<std::uint32_t>(bytes.size()));
        bytes.insert(bytes.end(), login.features.begin(), login.features.end());
    }
    append(68, units(login.database), 2);
    if (!login.sspi.empty()) {
        bytes[25] = 0x80;
        append(78, login.sspi, 1);
    }
    put(0, static_cast<std::uint32_t>(bytes.size()));
    return bytes;
}

} // namespace LoginBytes
