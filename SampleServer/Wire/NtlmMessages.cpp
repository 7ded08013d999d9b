#include "Wire/NtlmMessages.h"

#include "Types/Text.h"
#include "Wire/ByteReader.h"
#include "Wire/Utf16Bytes.h"

#include <algorithm>

namespace SampleServer::Ntlm {

namespace {

constexpr char Signature[8] = {'N', 'T', 'L', 'M', 'S', 'S', 'P', '\0'};

enum MessageType : std::uint32_t { Negotiate = 1, ChallengeType = 2, Authenticate = 3 };

namespace Flag {
constexpr std::uint32_t Unicode = 0x1, RequestTarget = 0x4, NtlmFlag = 0x200, AlwaysSign = 0x8000,
                        TargetIsServer = 0x20000, ExtendedSessionSecurity = 0x80000, TargetInfo = 0x800000,
                        Key128 = 0x20000000, Key56 = 0x80000000;
} // namespace Flag

enum AvId : std::uint16_t { EndOfList = 0, ComputerName = 1, DomainName = 2 };

ByteReader openMessage(std::span<const std::uint8_t> message, MessageType type)
{
    ByteReader reader(message);
    const auto signature = reader.takeBytes(sizeof Signature);
    if (!std::equal(signature.begin(), signature.end(), std::begin(Signature)) ||
        reader.take<std::uint32_t>() != type)
        throw ProtocolError("An integrated login does not speak NTLM.");
    return reader;
}

/// A payload field: the reader is at its length, allocated length and offset.
Bytes takeField(ByteReader &reader, std::span<const std::uint8_t> message)
{
    const auto length = reader.take<std::uint16_t>();
    reader.take<std::uint16_t>();
    const auto offset = reader.take<std::uint32_t>();
    if (length == 0)
        return {};
    ByteReader payload(message);
    payload.takeBytes(offset);
    const auto field = payload.takeBytes(length);
    return {field.begin(), field.end()};
}

template <std::integral T>
void append(Bytes &out, T number)
{
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(&number);
    out.insert(out.end(), bytes, bytes + sizeof number);
}

void append(Bytes &out, std::u16string_view text)
{
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(text.data());
    out.insert(out.end(), bytes, bytes + text.size() * 2);
}

Bytes targetInfo(std::u16string_view name)
{
    Bytes info;
    for (const AvId id : {DomainName, ComputerName}) {
        append(info, static_cast<std::uint16_t>(id));
        append(info, static_cast<std::uint16_t>(name.size() * 2));
        append(info, name);
    }
    append(info, static_cast<std::uint16_t>(EndOfList));
    append(info, std::uint16_t{0});
    return info;
}

template <std::size_t Size>
bool equals(std::span<const std::uint8_t> bytes, const std::array<std::uint8_t, Size> &expected)
{
    return std::equal(bytes.begin(), bytes.end(), expected.begin(), expected.end());
}

} // namespace

Bytes challengeMessage(std::span<const std::uint8_t> negotiate, const Challenge &challenge,
                       std::string_view serverName)
{
    const auto requested = openMessage(negotiate, Negotiate).take<std::uint32_t>();
    if (!(requested & Flag::Unicode))
        throw ProtocolError("An integrated login does not speak Unicode.");
    constexpr std::uint32_t optional =
        Flag::AlwaysSign | Flag::ExtendedSessionSecurity | Flag::Key128 | Flag::Key56;
    const std::uint32_t flags = Flag::Unicode | Flag::RequestTarget | Flag::NtlmFlag | Flag::TargetIsServer |
                                Flag::TargetInfo | (requested & optional);
    const std::u16string name = toUtf16(serverName);
    const Bytes info = targetInfo(name);
    constexpr std::uint32_t payload = 48;

    Bytes message(std::begin(Signature), std::end(Signature));
    append(message, static_cast<std::uint32_t>(ChallengeType));
    append(message, static_cast<std::uint16_t>(name.size() * 2));
    append(message, static_cast<std::uint16_t>(name.size() * 2));
    append(message, payload);
    append(message, flags);
    message.insert(message.end(), challenge.begin(), challenge.end());
    append(message, std::uint64_t{0});
    append(message, static_cast<std::uint16_t>(info.size()));
    append(message, static_cast<std::uint16_t>(info.size()));
    append(message, static_cast<std::uint32_t>(payload + name.size() * 2));
    append(message, name);
    message.insert(message.end(), info.begin(), info.end());
    return message;
}

Authentication parseAuthentication(std::span<const std::uint8_t> message)
{
    ByteReader reader = openMessage(message, Authenticate);
    Authentication authentication;
    authentication.lmResponse = takeField(reader, message);
    authentication.ntResponse = takeField(reader, message);
    const Bytes domain = takeField(reader, message);
    const Bytes user = takeField(reader, message);
    takeField(reader, message); // the workstation
    takeField(reader, message); // the session key
    const auto flags = reader.take<std::uint32_t>();
    authentication.domain = utf16From(domain);
    authentication.user = utf16From(user);
    authentication.extendedSessionSecurity = flags & Flag::ExtendedSessionSecurity;
    return authentication;
}

/// With extended session security the LM response contains eight random bytes followed by zeros. Some clients
/// use it without repeating its flag.
static bool hasClientChallenge(std::span<const std::uint8_t> lmResponse)
{
    const auto isZero = [](std::uint8_t byte) { return byte == 0; };
    const auto zeros = lmResponse.subspan(std::min(lmResponse.size(), sizeof(Challenge)));
    return lmResponse.size() == sizeof(Response) && std::all_of(zeros.begin(), zeros.end(), isZero) &&
           !std::all_of(lmResponse.begin(), lmResponse.end(), isZero);
}

bool Authentication::proves(std::u16string_view password, const Challenge &challenge) const
{
    const std::span<const std::uint8_t> answer = ntResponse;
    if (answer.size() < sizeof(Response))
        return false; // only the LM response, or none
    if (answer.size() > sizeof(Response)) {
        const auto blob = answer.subspan(sizeof(Hash));
        return equals(answer.first(sizeof(Hash)),
                      proof(accountHash(password, user, domain), challenge, blob));
    }
    Challenge effective = challenge;
    if (extendedSessionSecurity || hasClientChallenge(lmResponse)) {
        if (lmResponse.size() < effective.size())
            return false;
        Challenge client;
        std::copy_n(lmResponse.begin(), client.size(), client.begin());
        effective = sessionChallenge(challenge, client);
    }
    return equals(answer, response(passwordHash(password), effective));
}

} // namespace SampleServer::Ntlm
