#include "Wire/NtlmMessages.h"

#include "MemoryTransport.h"
#include "Wire/ProtocolError.h"

#include <gtest/gtest.h>

using namespace SampleServer;
using namespace SampleServer::Ntlm;

// The vectors are those of MS-NLMP 4.2: user "User", domain "Domain", password "Password", server challenge
// 0123456789abcdef, client challenge of eight bytes AA, time 0.

namespace {

constexpr Challenge ServerChallenge = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
constexpr Challenge ClientChallenge = {0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA};
constexpr const char *Response1 = "67 C4 30 11 F3 02 98 A2 AD 35 EC E6 4F 16 33 1C 44 BD BE D9 27 84 1F 94";
constexpr const char *SessionResponse1 =
    "75 37 F8 03 AE 36 71 28 CA 45 82 04 BD E7 CA F8 1E 97 ED 26 83 26 72 32";
constexpr const char *Proof2 = "68 CD 0A B8 51 E5 1C 96 AA BC 92 7B EB EF 6A 1C";

Bytes bytesOf(const std::string &text)
{
    Bytes result;
    for (std::size_t at = 0; at < text.size(); at += 3)
        result.push_back(static_cast<std::uint8_t>(std::stoi(text.substr(at, 2), nullptr, 16)));
    return result;
}

/// What follows the proof in an NTLMv2 response to a server named "Server" of the domain "Domain".
const Bytes Blob2 =
    bytesOf("01 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 AA AA AA AA AA AA AA AA 00 00 00 00 "
            "02 00 0C 00 44 00 6F 00 6D 00 61 00 69 00 6E 00 "
            "01 00 0C 00 53 00 65 00 72 00 76 00 65 00 72 00 00 00 00 00 00 00 00 00");

Authentication authentication(Bytes ntResponse, Bytes lmResponse = Bytes(24), bool session = false)
{
    return {u"Domain", u"User", std::move(lmResponse), std::move(ntResponse), session};
}

/// An AUTHENTICATE_MESSAGE without workstation and session key.
Bytes authenticateMessage(const Bytes &ntResponse, std::uint32_t flags)
{
    Bytes message = bytesOf("4E 54 4C 4D 53 53 50 00 03 00 00 00");
    const Bytes domain = bytesOf("44 00 6F 00 6D 00");
    const Bytes user = bytesOf("55 00 73 00");
    const Bytes fields[] = {Bytes(24), ntResponse, domain, user, {}, {}};
    std::uint32_t offset = 64;
    for (const Bytes &field : fields) {
        const auto size = static_cast<std::uint8_t>(field.size());
        for (const std::uint8_t byte : {int{size}, 0, int{size}, 0, int(offset), 0, 0, 0})
            message.push_back(byte);
        offset += size;
    }
    for (const int shift : {0, 8, 16, 24})
        message.push_back(static_cast<std::uint8_t>(flags >> shift));
    for (const Bytes &field : fields)
        message.insert(message.end(), field.begin(), field.end());
    return message;
}

} // namespace

TEST(Ntlm, HashesAPassword)
{
    EXPECT_EQ(hex(passwordHash(u"Password")), "A4 F4 9C 40 65 10 BD CA B6 82 4E E7 C3 0F D8 52");
}

TEST(Ntlm, HashesAnAccount)
{
    EXPECT_EQ(hex(accountHash(u"Password", u"User", u"Domain")),
              "0C 86 8A 40 3B FD 7A 93 A3 00 1E F2 2E F0 2E 3F");
}

TEST(Ntlm, RespondsToAChallenge)
{
    EXPECT_EQ(hex(response(passwordHash(u"Password"), ServerChallenge)), Response1);
}

TEST(Ntlm, RespondsToAChallengeUnderExtendedSessionSecurity)
{
    const Challenge challenge = sessionChallenge(ServerChallenge, ClientChallenge);
    EXPECT_EQ(hex(response(passwordHash(u"Password"), challenge)), SessionResponse1);
}

TEST(Ntlm, ProvesKnowledgeOfAPasswordInVersion2)
{
    EXPECT_EQ(hex(proof(accountHash(u"Password", u"User", u"Domain"), ServerChallenge, Blob2)), Proof2);
}

TEST(Ntlm, AcceptsEachKindOfResponseWithTheRightPasswordOnly)
{
    Bytes version2 = bytesOf(Proof2);
    version2.insert(version2.end(), Blob2.begin(), Blob2.end());
    const Bytes sessionLm =
        bytesOf("AA AA AA AA AA AA AA AA 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
    for (const Authentication &answer : {authentication(bytesOf(Response1)), authentication(version2),
                                         authentication(bytesOf(SessionResponse1), sessionLm, true),
                                         authentication(bytesOf(SessionResponse1), sessionLm, false)}) {
        EXPECT_TRUE(answer.proves(u"Password", ServerChallenge));
        EXPECT_FALSE(answer.proves(u"password", ServerChallenge));
        EXPECT_FALSE(answer.proves(u"Password", ClientChallenge));
    }
}

TEST(Ntlm, RefusesMalformedResponses)
{
    for (const std::size_t size : {0u, 1u, 16u, 23u, 24u, 25u, 60u})
        EXPECT_FALSE(authentication(Bytes(size)).proves(u"Password", ServerChallenge)) << size;
}

TEST(Ntlm, ChallengesWithItsNameAndTheFlagsThatTheClientKnows)
{
    // Negotiate: Unicode, NTLM, extended session security.
    const Bytes negotiate = bytesOf("4E 54 4C 4D 53 53 50 00 01 00 00 00 01 02 08 00");
    EXPECT_EQ(hex(challengeMessage(negotiate, ServerChallenge, "S")),
              "4E 54 4C 4D 53 53 50 00 02 00 00 00 02 00 02 00 30 00 00 00 05 02 8A 00 "
              "01 23 45 67 89 AB CD EF 00 00 00 00 00 00 00 00 10 00 10 00 32 00 00 00 "
              "53 00 02 00 02 00 53 00 01 00 02 00 53 00 00 00 00 00");
}

TEST(Ntlm, RefusesAFirstMessageThatIsNotNegotiate)
{
    for (const char *message : {"4E 54 4C 4D 53 53 50 00 03 00 00 00 01 02 08 00", // of another type
                                "4E 54 4C 4D 53 53 51 00 01 00 00 00 01 02 08 00", // with another signature
                                "4E 54 4C 4D 53 53 50 00 01 00 00 00 02 02 08 00", // without Unicode
                                "4E 54 4C 4D 53 53 50 00 01 00 00 00 01"})         // cut short
        EXPECT_THROW(challengeMessage(bytesOf(message), ServerChallenge, "S"), ProtocolError) << message;
}

TEST(Ntlm, ReadsAnAuthentication)
{
    const Authentication read = parseAuthentication(authenticateMessage({1, 2, 3}, 0x80201));
    EXPECT_EQ(read.domain, u"Dom");
    EXPECT_EQ(read.user, u"Us");
    EXPECT_EQ(hex(read.ntResponse), "01 02 03");
    EXPECT_EQ(read.lmResponse.size(), 24u);
    EXPECT_TRUE(read.extendedSessionSecurity);
}

TEST(Ntlm, RefusesEveryTruncationOfAnAuthentication)
{
    const Bytes whole = authenticateMessage({1, 2, 3}, 0x201);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_THROW(parseAuthentication(std::span(whole).first(size)), ProtocolError) << size;
}
