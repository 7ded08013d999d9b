#pragma once

#include "Types/ResultSink.h"
#include "Wire/PacketWriter.h"
#include "Wire/TdsVersion.h"

#include <array>
#include <span>
#include <string_view>

namespace SampleServer {

/// The four numbers of a server version: 16.0.1000.6.
struct ProgramVersion
{
    std::uint8_t major = 16;
    std::uint8_t minor = 0;
    std::uint16_t build = 1000;
    std::uint16_t revision = 6;
};

namespace DoneStatus {
inline constexpr std::uint16_t More = 0x01, Error = 0x02, Count = 0x10, Attention = 0x20;
} // namespace DoneStatus

/// Writes the response tokens without rows (MS-TDS 2.2.7) in the format of the client's version.
class TokenWriter
{
public:
    enum class Done : std::uint8_t { Statement = 0xFD, Procedure = 0xFE, InProcedure = 0xFF };
    enum class EnvironmentText : std::uint8_t { Database = 1, Language = 2, PacketSize = 4 };

    TokenWriter(PacketWriter &out, TdsVersion version)
        : m_out(out)
        , m_version(version)
    {
    }

    TdsVersion version() const { return m_version; }

    void loginAck(const ProgramVersion &program);
    void environmentText(EnvironmentText what, std::string_view newValue, std::string_view oldValue);
    void environmentCollation();
    /// Writes nothing before 7.2, where transactions have no descriptors.
    void environmentTransaction(TransactionEvent event, std::uint64_t descriptor);
    /// Reports to a client of 7.2 and later that the requested reset is done.
    void environmentReset();
    /// INFO up to severity 10, ERROR above. Text is truncated at 16000 UTF-16 units.
    void message(const ServerMessage &message, std::string_view serverName);
    void done(Done kind, std::uint16_t status, std::uint16_t currentCommand, std::uint64_t rowCount);
    /// Writes a whole message: the answer to an attention.
    void acknowledgeAttention();
    void returnStatus(std::int32_t status);
    void order(std::span<const std::uint16_t> columns);
    void sspi(std::span<const std::uint8_t> token);
    /// Answers the feature requests of a 7.4 login: none is supported, UTF-8 is declined explicitly.
    void featureExtensionAck(bool utf8Requested);

private:
    void put(std::uint8_t token) { m_out.put(token); }

    PacketWriter &m_out;
    TdsVersion m_version;
};

} // namespace SampleServer
