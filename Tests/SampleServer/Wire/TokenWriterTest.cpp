#include "Wire/TokenWriter.h"

#include "MemoryTransport.h"

#include <functional>
#include <gtest/gtest.h>

using namespace SampleServer;

namespace {

/// The bytes that one call writes for a version.
std::string written(TdsVersion version, const std::function<void(TokenWriter &)> &call)
{
    MemoryTransport transport;
    PacketWriter out(transport);
    TokenWriter tokens(out, version);
    call(tokens);
    out.endMessage();
    return hex(payloadOf(transport.written));
}

ServerMessage sampleMessage(std::uint8_t severity)
{
    ServerMessage message;
    message.number = 208;
    message.state = 3;
    message.severity = severity;
    message.text = "é";
    message.procedure = "p";
    message.line = 70'000;
    return message;
}

} // namespace

TEST(TokenWriter, LoginAckNamesVersionAndProgram)
{
    const std::string name =
        "4D 00 69 00 63 00 72 00 6F 00 73 00 6F 00 66 00 74 00 20 00 53 00 51 00 4C 00 20 00 53 00 65 "
        "00 72 00 76 00 65 00 72 00";
    const auto ack = [](TokenWriter &tokens) { tokens.loginAck({16, 0, 1000, 6}); };
    EXPECT_EQ(written(TdsVersion::V74, ack), "AD 32 00 01 74 00 00 04 14 " + name + " 10 00 03 E8");
    EXPECT_EQ(written(TdsVersion::V71, ack), "AD 32 00 01 71 00 00 01 14 " + name + " 10 00 03 E8");
}

TEST(TokenWriter, MessagesHaveLinesOfTwoBytesBefore72AndOfFourFromThen)
{
    const auto error = [](TokenWriter &tokens) { tokens.message(sampleMessage(16), "S"); };
    EXPECT_EQ(written(TdsVersion::V72, error),
              "AA 14 00 D0 00 00 00 03 10 01 00 E9 00 01 53 00 01 70 00 70 11 01 00");
    EXPECT_EQ(written(TdsVersion::V71, error),
              "AA 12 00 D0 00 00 00 03 10 01 00 E9 00 01 53 00 01 70 00 70 11");
}

TEST(TokenWriter, SeverityTenIsInformation)
{
    const auto token = [](std::uint8_t severity) {
        return written(TdsVersion::V74,
                       [&](TokenWriter &tokens) { tokens.message(sampleMessage(severity), ""); })
            .substr(0, 2);
    };
    EXPECT_EQ(token(10), "AB");
    EXPECT_EQ(token(11), "AA");
}

TEST(TokenWriter, TruncatesAMessageAboveItsLengthLimit)
{
    const std::string bytes = written(TdsVersion::V74, [](TokenWriter &tokens) {
        ServerMessage message;
        message.text = std::string(100'000, 'x');
        tokens.message(message, "");
    });
    EXPECT_EQ((bytes.size() + 1) / 3, 3u + 4 + 1 + 1 + 2 + 2 * 16000 + 1 + 1 + 4);
}

TEST(TokenWriter, DoneHasACountOfFourBytesBefore72AndOfEightFromThen)
{
    const auto done = [](TokenWriter &tokens) {
        tokens.done(TokenWriter::Done::Statement, DoneStatus::Count | DoneStatus::More, 0xC1, 5'000'000'000);
    };
    EXPECT_EQ(written(TdsVersion::V72, done), "FD 11 00 C1 00 00 F2 05 2A 01 00 00 00");
    EXPECT_EQ(written(TdsVersion::V71, done), "FD 11 00 C1 00 00 F2 05 2A");
}

TEST(TokenWriter, ProceduresEndWithTokensOfTheirOwn)
{
    const auto token = [](TokenWriter::Done kind) {
        return written(TdsVersion::V71, [&](TokenWriter &tokens) { tokens.done(kind, 0, 0, 0); });
    };
    EXPECT_EQ(token(TokenWriter::Done::Procedure), "FE 00 00 00 00 00 00 00 00");
    EXPECT_EQ(token(TokenWriter::Done::InProcedure), "FF 00 00 00 00 00 00 00 00");
    EXPECT_EQ(written(TdsVersion::V71, [](TokenWriter &tokens) { tokens.returnStatus(-6); }),
              "79 FA FF FF FF");
}

TEST(TokenWriter, EnvironmentChangesCarryNewAndOldValue)
{
    EXPECT_EQ(written(TdsVersion::V74,
                      [](TokenWriter &tokens) {
                          tokens.environmentText(TokenWriter::EnvironmentText::Database, "ab", "c");
                      }),
              "E3 09 00 01 02 61 00 62 00 01 63 00");
    EXPECT_EQ(written(TdsVersion::V74, [](TokenWriter &tokens) { tokens.environmentCollation(); }),
              "E3 08 00 07 05 09 04 D0 00 34 00");
    EXPECT_EQ(written(TdsVersion::V74, [](TokenWriter &tokens) { tokens.environmentReset(); }),
              "E3 03 00 12 00 00");
}

TEST(TokenWriter, TransactionsHaveDescriptorsFrom72On)
{
    const auto change = [](TdsVersion version, TransactionEvent event) {
        return written(
            version, [&](TokenWriter &tokens) { tokens.environmentTransaction(event, 0x0102030405060708); });
    };
    EXPECT_EQ(change(TdsVersion::V72, TransactionEvent::Begun), "E3 0B 00 08 08 08 07 06 05 04 03 02 01 00");
    EXPECT_EQ(change(TdsVersion::V72, TransactionEvent::Committed),
              "E3 0B 00 09 00 08 08 07 06 05 04 03 02 01");
    EXPECT_EQ(change(TdsVersion::V72, TransactionEvent::RolledBack),
              "E3 0B 00 0A 00 08 08 07 06 05 04 03 02 01");
    EXPECT_EQ(change(TdsVersion::V71, TransactionEvent::Begun), "");
}

TEST(TokenWriter, OrderListsColumnNumbers)
{
    const std::vector<std::uint16_t> columns = {2, 300};
    EXPECT_EQ(written(TdsVersion::V74, [&](TokenWriter &tokens) { tokens.order(columns); }),
              "A9 04 00 02 00 2C 01");
}

TEST(TokenWriter, FeatureExtensionsAreDeclined)
{
    EXPECT_EQ(written(TdsVersion::V74, [](TokenWriter &tokens) { tokens.featureExtensionAck(false); }),
              "AE FF");
    EXPECT_EQ(written(TdsVersion::V74, [](TokenWriter &tokens) { tokens.featureExtensionAck(true); }),
              "AE 0A 01 00 00 00 00 FF");
}
