#include "Fuzz/ServerMutation.h"

#include "Fuzz/HostileToken.h"

#include <algorithm>
#include <array>
#include <random>

namespace {

using Bytes = ServerMutation::Bytes;
using Change = ServerMutation::Change;
using Kind = ServerMutation::Kind;

constexpr std::size_t HeaderSize = 8;
constexpr std::size_t LargestPacket = 32767;
constexpr std::array<const char *, ServerMutation::KindCount> KindNames = {
    "FlipBit",         "SetByte",        "SetLength",   "RemoveBytes",   "TruncatePacket",
    "SetPacketLength", "DuplicateToken", "InsertToken", "DropConnection"};

bool isTdsPacket(const Bytes &frame)
{
    return frame.size() >= HeaderSize && (frame[0] == 4 || frame[0] == 18);
}

void setByte(Bytes &frame, std::size_t index, std::uint32_t value)
{
    static constexpr std::array<std::uint8_t, 8> Edges = {0, 1, 0x7F, 0x80, 0xFE, 0xFF, 0x20, 0x40};
    frame[index] = Edges[value % Edges.size()];
}

void setLength(Bytes &frame, std::size_t index, std::uint32_t value)
{
    static constexpr std::array<std::uint32_t, 8> Edges = {0,      0xFFFF,     0xFFFE,     0x7FFF,
                                                           0x8000, 0xFFFFFFFF, 0x7FFFFFFF, 0xFFFFFFFE};
    const std::uint32_t length = Edges[value % Edges.size()];
    const std::size_t size = value % Edges.size() < 5 ? 2 : 4;
    for (std::size_t byte = 0; byte < size && index + byte < frame.size(); ++byte)
        frame[index + byte] = static_cast<std::uint8_t>(length >> (8 * byte));
}

void setPacketLength(Bytes &packet, std::size_t length)
{
    packet[2] = static_cast<std::uint8_t>(length >> 8);
    packet[3] = static_cast<std::uint8_t>(length);
}

/// Splits what has grown beyond one packet into several of the same message.
Bytes repacked(const Bytes &packet)
{
    Bytes out;
    for (std::size_t at = HeaderSize; at < packet.size();) {
        const std::size_t part = std::min(packet.size() - at, LargestPacket - HeaderSize);
        Bytes piece(packet.begin(), packet.begin() + HeaderSize);
        piece.insert(piece.end(), packet.begin() + static_cast<std::ptrdiff_t>(at),
                     packet.begin() + static_cast<std::ptrdiff_t>(at + part));
        at += part;
        if (at < packet.size())
            piece[1] = 0; // not the end of the message
        setPacketLength(piece, piece.size());
        out.insert(out.end(), piece.begin(), piece.end());
    }
    return out;
}

bool canBeginAToken(std::uint8_t byte)
{
    static constexpr std::array<std::uint8_t, 13> Codes = {0x79, 0x81, 0xA9, 0xAA, 0xAB, 0xAC, 0xAD,
                                                           0xD1, 0xD2, 0xE3, 0xFD, 0xFE, 0xFF};
    return std::find(Codes.begin(), Codes.end(), byte) != Codes.end();
}

/// Where a token may begin at an index or after it; the packet's end otherwise.
std::size_t tokenAt(const Bytes &packet, std::size_t index)
{
    const auto from = packet.begin() + static_cast<std::ptrdiff_t>(std::max(index, HeaderSize));
    return static_cast<std::size_t>(std::find_if(from, packet.end(), canBeginAToken) - packet.begin());
}

void insert(Bytes &packet, std::size_t index, const Bytes &bytes, std::size_t count)
{
    Bytes inserted;
    for (std::size_t i = 0; i < count; ++i)
        inserted.insert(inserted.end(), bytes.begin(), bytes.end());
    packet.insert(packet.begin() + static_cast<std::ptrdiff_t>(index), inserted.begin(), inserted.end());
}

std::size_t repetitions(std::uint32_t value)
{
    static constexpr std::array<std::size_t, 6> Counts = {1, 1, 1, 2, 100, 2000};
    return Counts[value % Counts.size()];
}

/// Changes which also fit a TLS record, whose size stays.
bool changeBytes(Bytes &frame, const Change &change, std::size_t index)
{
    switch (change.kind) {
    case Kind::FlipBit:
        frame[index] = static_cast<std::uint8_t>(frame[index] ^ (1U << (change.value % 8)));
        return true;
    case Kind::SetByte:
        setByte(frame, index, change.value);
        return true;
    case Kind::SetLength:
        setLength(frame, index, change.value);
        return true;
    default:
        return false;
    }
}

/// Changes of a packet's size and header. Returns whether the header must be made right again.
bool changeStructure(Bytes &packet, const Change &change, std::size_t index)
{
    const std::size_t token = tokenAt(packet, index);
    switch (change.kind) {
    case Kind::RemoveBytes: {
        const std::size_t begin = std::max(index, HeaderSize);
        const std::size_t count = std::min<std::size_t>(1 + change.value % 16, packet.size() - begin);
        packet.erase(packet.begin() + static_cast<std::ptrdiff_t>(begin),
                     packet.begin() + static_cast<std::ptrdiff_t>(begin + count));
        return true;
    }
    case Kind::DuplicateToken: {
        const std::size_t end = token < packet.size() ? tokenAt(packet, token + 1) : token;
        const Bytes copy(packet.begin() + static_cast<std::ptrdiff_t>(token),
                         packet.begin() + static_cast<std::ptrdiff_t>(end));
        insert(packet, token, copy, repetitions(change.value));
        return true;
    }
    case Kind::InsertToken:
        insert(packet, token, hostileToken(change.value), repetitions(change.value / 7));
        return true;
    case Kind::SetPacketLength: {
        static constexpr std::array<std::size_t, 6> Edges = {0, 7, 8, 9, 0x7FFF, 0xFFFF};
        setPacketLength(packet, Edges[change.value % Edges.size()]);
        return false;
    }
    default:
        return false;
    }
}

} // namespace

ServerMutation::ServerMutation(std::uint64_t seed, std::uint64_t begin, std::uint64_t end)
{
    std::mt19937_64 random(seed);
    for (auto count = 1 + random() % 3; count > 0; --count) {
        Change change{};
        change.kind = static_cast<Kind>(random() % KindCount);
        change.position = begin + random() % (end - begin);
        change.value = static_cast<std::uint32_t>(random());
        m_changes.push_back(change);
    }
    std::stable_sort(m_changes.begin(), m_changes.end(),
                     [](const Change &a, const Change &b) { return a.position > b.position; });
}

std::string ServerMutation::description() const
{
    std::string text;
    for (const Change &change : m_changes) {
        text += text.empty() ? "" : ", ";
        text += KindNames[static_cast<std::size_t>(change.kind)];
        text += " at " + std::to_string(change.position) + " (" + std::to_string(change.value) + ")";
    }
    return text;
}

ServerMutation::Result ServerMutation::apply(std::span<const std::uint8_t> frame,
                                             std::uint64_t position) const
{
    Result result{Bytes(frame.begin(), frame.end()), false};
    const bool isPacket = isTdsPacket(result.bytes);
    bool needsHeader = false;
    for (const Change &change : m_changes) {
        if (change.position < position || change.position >= position + frame.size())
            continue;
        const auto index =
            std::min(static_cast<std::size_t>(change.position - position), result.bytes.size());
        if (change.kind == Kind::DropConnection) {
            result.bytes.resize(index);
            result.isLast = true;
        } else if (change.kind == Kind::TruncatePacket) {
            result.bytes.resize(std::max(index, std::min(HeaderSize, result.bytes.size())));
            needsHeader = false;
        } else if (index >= result.bytes.size() || changeBytes(result.bytes, change, index) || !isPacket) {
            continue;
        } else {
            needsHeader = changeStructure(result.bytes, change, index) || needsHeader;
        }
    }
    if (needsHeader && !result.isLast && result.bytes.size() > HeaderSize)
        result.bytes = repacked(result.bytes);
    return result;
}
