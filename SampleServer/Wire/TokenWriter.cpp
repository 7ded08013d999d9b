#include "Wire/TokenWriter.h"

#include "Types/Text.h"
#include "Wire/LoginFeature.h"
#include "Wire/WireType.h"

namespace SampleServer {

namespace {

namespace Token {
constexpr std::uint8_t ReturnStatus = 0x79, Order = 0xA9, Error = 0xAA, Info = 0xAB, LoginAck = 0xAD,
                       FeatureExtensionAck = 0xAE, EnvironmentChange = 0xE3, Sspi = 0xED;
} // namespace Token

constexpr std::uint8_t EnvironmentCollation = 7;
constexpr std::uint8_t EnvironmentReset = 18;
constexpr std::size_t LongestMessage = 16000;

std::u16string shortText(std::string_view text)
{
    return toUtf16(text).substr(0, 0xFF);
}

/// The bytes of a B_VARCHAR.
std::size_t sizeOf(std::u16string_view text)
{
    return 1 + 2 * text.size();
}

} // namespace

void TokenWriter::loginAck(const ProgramVersion &program)
{
    static constexpr std::u16string_view name = u"Microsoft SQL Server";
    put(Token::LoginAck);
    m_out.put(static_cast<std::uint16_t>(1 + 4 + sizeOf(name) + 4));
    m_out.put<std::uint8_t>(1); // the interface is T-SQL
    const std::uint32_t version = loginAckVersion(m_version);
    for (const int shift : {24, 16, 8, 0})
        m_out.put(static_cast<std::uint8_t>(version >> shift));
    m_out.putShortText(name);
    m_out.put(program.major);
    m_out.put(program.minor);
    m_out.put(static_cast<std::uint8_t>(program.build >> 8));
    m_out.put(static_cast<std::uint8_t>(program.build));
}

void TokenWriter::environmentText(EnvironmentText what, std::string_view newValue, std::string_view oldValue)
{
    const std::u16string after = shortText(newValue);
    const std::u16string before = shortText(oldValue);
    put(Token::EnvironmentChange);
    m_out.put(static_cast<std::uint16_t>(1 + sizeOf(after) + sizeOf(before)));
    m_out.put(static_cast<std::uint8_t>(what));
    m_out.putShortText(after);
    m_out.putShortText(before);
}

void TokenWriter::environmentCollation()
{
    put(Token::EnvironmentChange);
    m_out.put(static_cast<std::uint16_t>(1 + 1 + DefaultCollation.size() + 1));
    m_out.put(EnvironmentCollation);
    m_out.put(static_cast<std::uint8_t>(DefaultCollation.size()));
    m_out.putBytes(DefaultCollation.data(), DefaultCollation.size());
    m_out.put<std::uint8_t>(0);
}

void TokenWriter::environmentTransaction(TransactionEvent event, std::uint64_t descriptor)
{
    if (m_version < TdsVersion::V72)
        return;
    const bool begins = event == TransactionEvent::Begun;
    put(Token::EnvironmentChange);
    m_out.put(static_cast<std::uint16_t>(1 + 1 + sizeof descriptor + 1));
    m_out.put(static_cast<std::uint8_t>(begins ? 8 : event == TransactionEvent::Committed ? 9 : 10));
    if (!begins)
        m_out.put<std::uint8_t>(0);
    m_out.put(static_cast<std::uint8_t>(sizeof descriptor));
    m_out.put(descriptor);
    if (begins)
        m_out.put<std::uint8_t>(0);
}

void TokenWriter::environmentReset()
{
    if (m_version < TdsVersion::V72)
        return;
    put(Token::EnvironmentChange);
    m_out.put<std::uint16_t>(3);
    m_out.put(EnvironmentReset);
    m_out.put<std::uint16_t>(0);
}

void TokenWriter::message(const ServerMessage &message, std::string_view serverName)
{
    const std::u16string text = toUtf16(message.text).substr(0, LongestMessage);
    const std::u16string server = shortText(serverName);
    const std::u16string procedure = shortText(message.procedure);
    const bool wideLine = m_version >= TdsVersion::V72;
    put(message.severity > 10 ? Token::Error : Token::Info);
    m_out.put(static_cast<std::uint16_t>(4 + 1 + 1 + 2 + 2 * text.size() + sizeOf(server) +
                                         sizeOf(procedure) + (wideLine ? 4 : 2)));
    m_out.put(message.number);
    m_out.put(message.state);
    m_out.put(message.severity);
    m_out.putLongText(text);
    m_out.putShortText(server);
    m_out.putShortText(procedure);
    if (wideLine)
        m_out.put(message.line);
    else
        m_out.put(static_cast<std::uint16_t>(message.line));
}

void TokenWriter::done(Done kind, std::uint16_t status, std::uint16_t currentCommand, std::uint64_t rowCount)
{
    put(static_cast<std::uint8_t>(kind));
    m_out.put(status);
    m_out.put(currentCommand);
    if (m_version >= TdsVersion::V72)
        m_out.put(rowCount);
    else
        m_out.put(static_cast<std::uint32_t>(rowCount));
}

void TokenWriter::acknowledgeAttention()
{
    done(Done::Statement, DoneStatus::Attention, 0, 0);
    m_out.endMessage();
}

void TokenWriter::returnStatus(std::int32_t status)
{
    put(Token::ReturnStatus);
    m_out.put(status);
}

void TokenWriter::order(std::span<const std::uint16_t> columns)
{
    put(Token::Order);
    m_out.put(static_cast<std::uint16_t>(columns.size_bytes()));
    m_out.putBytes(columns.data(), columns.size_bytes());
}

void TokenWriter::sspi(std::span<const std::uint8_t> token)
{
    put(Token::Sspi);
    m_out.put(static_cast<std::uint16_t>(token.size()));
    m_out.putBytes(token.data(), token.size());
}

void TokenWriter::featureExtensionAck(bool utf8Requested)
{
    put(Token::FeatureExtensionAck);
    if (utf8Requested) {
        m_out.put(LoginFeature::Utf8Support);
        m_out.put<std::uint32_t>(1);
        m_out.put<std::uint8_t>(0);
    }
    m_out.put(LoginFeature::Terminator);
}

} // namespace SampleServer
