#include "Fuzz/HostileToken.h"

#include <array>
#include <random>
#include <string>

namespace {

using Bytes = std::vector<std::uint8_t>;
using Random = std::mt19937;

template <std::size_t Size>
std::uint8_t oneOf(const std::array<std::uint8_t, Size> &values, Random &random)
{
    return values[random() % Size];
}

void putLength(Bytes &out, std::size_t length, std::size_t size)
{
    for (std::size_t byte = 0; byte < size; ++byte)
        out.push_back(static_cast<std::uint8_t>(length >> (8 * byte)));
}

/// The true length in most cases, otherwise one at an edge.
std::size_t claimed(std::size_t length, Random &random)
{
    static constexpr std::array<std::size_t, 6> Edges = {0, 1, 0x7FFF, 0x8000, 0xFFFE, 0xFFFF};
    return random() % 3 ? length : Edges[random() % Edges.size()];
}

/// A text of one byte per character, or of two, behind its length.
void putText(Bytes &out, const std::string &text, std::size_t lengthSize, Random &random)
{
    putLength(out, claimed(text.size(), random), lengthSize);
    for (const char character : text) {
        out.push_back(static_cast<std::uint8_t>(character));
        out.push_back(0);
    }
}

std::string someText(Random &random)
{
    static const std::array<std::string, 10> Texts = {"",
                                                      "1",
                                                      "master",
                                                      "-1",
                                                      "4096",
                                                      "99999999",
                                                      std::string(200, 'x'),
                                                      "<img src=x>",
                                                      "%n%s",
                                                      std::string("a\0b\n\x1b", 5)};
    return Texts[random() % Texts.size()];
}

Bytes behindLength(std::uint8_t code, const Bytes &content, Random &random)
{
    Bytes out{code};
    putLength(out, claimed(content.size(), random), 2);
    out.insert(out.end(), content.begin(), content.end());
    return out;
}

Bytes message(Random &random)
{
    Bytes content;
    putLength(content, random(), 4);
    content.push_back(static_cast<std::uint8_t>(random()));
    content.push_back(static_cast<std::uint8_t>(random() % 27)); // the severity
    putText(content, someText(random), 2, random);
    putText(content, someText(random), 1, random);
    putText(content, someText(random), 1, random);
    putLength(content, random(), 4);
    return behindLength(random() % 2 ? 0xAA : 0xAB, content, random);
}

Bytes environmentChange(Random &random)
{
    Bytes content{static_cast<std::uint8_t>(random() % 22)};
    if (content[0] == 20) { // routing: protocol, port, host
        Bytes route{0};
        putLength(route, random() % 3, 2);
        putText(route, random() % 2 ? "127.0.0.1" : someText(random), 2, random);
        putLength(content, claimed(route.size(), random), 2);
        content.insert(content.end(), route.begin(), route.end());
        putLength(content, 0, 2);
    } else {
        putText(content, someText(random), 1, random);
        putText(content, someText(random), 1, random);
    }
    return behindLength(0xE3, content, random);
}

Bytes columns(Random &random)
{
    static constexpr std::array<std::uint8_t, 36> Types = {
        0x1F, 0x22, 0x23, 0x24, 0x26, 0x28, 0x29, 0x2A, 0x2B, 0x30, 0x32, 0x34,
        0x37, 0x38, 0x3A, 0x3B, 0x3C, 0x3D, 0x3E, 0x3F, 0x62, 0x63, 0x68, 0x6A,
        0x6C, 0x6D, 0x6E, 0x6F, 0x7A, 0x7F, 0xA5, 0xA7, 0xAD, 0xE7, 0xF0, 0xF1};
    const std::size_t count = random() % 4;
    Bytes out{static_cast<std::uint8_t>(random() % 4 ? 0x81 : 0x88)};
    putLength(out, random() % 6 ? count : claimed(count, random), 2);
    for (std::size_t column = 0; column < count; ++column) {
        putLength(out, random() % 3, 4); // the user's type
        putLength(out, random(), 2);     // flags
        out.push_back(oneOf(Types, random));
        for (auto size = random() % 10; size > 0; --size)
            out.push_back(static_cast<std::uint8_t>(random()));
        putText(out, someText(random), 1, random);
    }
    return out;
}

Bytes done(Random &random)
{
    Bytes out{static_cast<std::uint8_t>(0xFD + random() % 3)};
    putLength(out, random() % 2 ? random() % 64 : random(), 2);
    putLength(out, random(), 2);
    putLength(out, random() % 2 ? 0xFFFFFFFF : random(), 4);
    putLength(out, random() % 2 ? 0 : random(), 4);
    return out;
}

/// Codes of this protocol and of its older relatives, which the client library knows as well.
Bytes anyToken(Random &random)
{
    static constexpr std::array<std::uint8_t, 38> Codes = {
        0x20, 0x21, 0x22, 0x61, 0x62, 0x65, 0x71, 0x78, 0x79, 0x7C, 0x80, 0x83, 0xA0,
        0xA1, 0xA4, 0xA5, 0xA7, 0xA8, 0xA9, 0xAA, 0xAC, 0xAD, 0xAE, 0xAF, 0xD1, 0xD2,
        0xD3, 0xD7, 0xE2, 0xE4, 0xE5, 0xE6, 0xE7, 0xEC, 0xED, 0xEE, 0x00, 0xFC};
    Bytes content;
    for (auto size = random() % 40; size > 0; --size)
        content.push_back(random() % 3 ? static_cast<std::uint8_t>(random() % 8)
                                       : static_cast<std::uint8_t>(random()));
    const std::uint8_t code = oneOf(Codes, random);
    if (random() % 2)
        return behindLength(code, content, random);
    content.insert(content.begin(), code);
    return content;
}

} // namespace

Bytes hostileToken(std::uint32_t value)
{
    Random random(value);
    switch (random() % 8) {
    case 0:
        return message(random);
    case 1:
        return environmentChange(random);
    case 2:
    case 3:
        return columns(random);
    case 4:
        return done(random);
    default:
        return anyToken(random);
    }
}
