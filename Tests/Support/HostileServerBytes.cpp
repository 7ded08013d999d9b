#include "Support/HostileServerBytes.h"

#include <algorithm>

namespace HostileServerBytes {

namespace {

/// Appends a number, least significant byte first.
template <typename T>
void put(Bytes &out, T number)
{
    for (std::size_t byte = 0; byte < sizeof number; ++byte)
        out.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(number) >> (8 * byte)));
}

void put(Bytes &out, const Bytes &bytes)
{
    out.insert(out.end(), bytes.begin(), bytes.end());
}

void putUnits(Bytes &out, std::string_view text)
{
    for (const char c : text) {
        out.push_back(static_cast<std::uint8_t>(c));
        out.push_back(0);
    }
}

void putShortText(Bytes &out, std::string_view text)
{
    put(out, static_cast<std::uint8_t>(text.size()));
    putUnits(out, text);
}

Bytes header(std::uint8_t status, std::size_t length, std::uint8_t number)
{
    return {4,      status, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length), 0, 51,
            number, 0};
}

/// A token with two bytes of length before its content.
Bytes token(std::uint8_t code, const Bytes &content)
{
    Bytes out{code};
    put(out, static_cast<std::uint16_t>(content.size()));
    put(out, content);
    return out;
}

const Bytes Collation{0x09, 0x04, 0xD0, 0x00, 0x34};

} // namespace

Bytes packet(const Bytes &payload, bool endOfMessage, std::size_t packetSize)
{
    Bytes out;
    std::uint8_t number = 1;
    std::size_t at = 0;
    do {
        const std::size_t part = std::min(payload.size() - at, packetSize - 8);
        const bool last = at + part == payload.size();
        put(out, header(last && endOfMessage ? 1 : 0, part + 8, number++));
        out.insert(out.end(), payload.begin() + static_cast<std::ptrdiff_t>(at),
                   payload.begin() + static_cast<std::ptrdiff_t>(at + part));
        at += part;
    } while (at < payload.size());
    return out;
}

Bytes packetOfClaimedLength(const Bytes &payload, std::uint16_t claimedLength)
{
    Bytes out = header(1, claimedLength, 1);
    put(out, payload);
    return out;
}

Bytes joined(std::initializer_list<Bytes> pieces)
{
    Bytes out;
    for (const Bytes &piece : pieces)
        put(out, piece);
    return out;
}

Bytes preloginAnswer(std::uint8_t encryption)
{
    // Version at 16 (6 bytes), encryption at 22, instance at 23, the terminator before them.
    return {0, 0, 16, 0, 6, 1, 0, 22, 0, 1, 2, 0, 23, 0, 1, 0xFF, 16, 0, 0x03, 0xE8, 0, 0, encryption, 0};
}

Bytes loginAnswer(std::uint32_t tdsVersion)
{
    return joined({environmentChange(1, "master", "master"), loginAck(tdsVersion),
                   environmentChange(4, "4096", "4096"), done()});
}

Bytes loginAck(std::uint32_t tdsVersion)
{
    Bytes content{1};
    for (const int shift : {24, 16, 8, 0})
        content.push_back(static_cast<std::uint8_t>(tdsVersion >> shift));
    putShortText(content, "Microsoft SQL Server");
    put(content, Bytes{16, 0, 0x03, 0xE8});
    return token(0xAD, content);
}

Bytes environmentChange(std::uint8_t type, std::string_view newValue, std::string_view oldValue)
{
    Bytes content{type};
    putShortText(content, newValue);
    putShortText(content, oldValue);
    return token(0xE3, content);
}

Bytes message(std::int32_t number, std::uint8_t severity, std::string_view text, std::int32_t line)
{
    Bytes content;
    put(content, number);
    content.push_back(1);
    content.push_back(severity);
    put(content, static_cast<std::uint16_t>(text.size()));
    putUnits(content, text);
    putShortText(content, "HOSTILE");
    putShortText(content, "");
    put(content, line);
    return token(severity > 10 ? 0xAA : 0xAB, content);
}

Bytes intColumns(const std::vector<std::string> &names)
{
    Bytes out{0x81};
    put(out, static_cast<std::uint16_t>(names.size()));
    for (const std::string &name : names) {
        put(out, std::uint32_t{0});
        put(out, std::uint16_t{1});
        put(out, Bytes{0x26, 4});
        putShortText(out, name);
    }
    return out;
}

Bytes intRow(const std::vector<std::optional<std::int32_t>> &values)
{
    Bytes out{0xD1};
    for (const auto &value : values) {
        out.push_back(value ? 4 : 0);
        if (value)
            put(out, *value);
    }
    return out;
}

Bytes textColumn(std::string_view name)
{
    Bytes out{0x81};
    put(out, std::uint16_t{1});
    put(out, std::uint32_t{0});
    put(out, std::uint16_t{1});
    out.push_back(0xE7);
    put(out, std::uint16_t{8000});
    put(out, Collation);
    putShortText(out, name);
    return out;
}

Bytes textRow(std::string_view value)
{
    Bytes out{0xD1};
    put(out, static_cast<std::uint16_t>(value.size() * 2));
    putUnits(out, value);
    return out;
}

Bytes done(std::uint16_t status, std::uint64_t rowCount)
{
    Bytes out{0xFD};
    put(out, status);
    put(out, std::uint16_t{0});
    put(out, rowCount);
    return out;
}

} // namespace HostileServerBytes
