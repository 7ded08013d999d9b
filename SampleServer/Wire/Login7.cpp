#include "Wire/Login7.h"

#include "Types/Text.h"
#include "Wire/ByteReader.h"
#include "Wire/LoginFeature.h"
#include "Wire/Utf16Bytes.h"

#include <algorithm>

namespace SampleServer {

namespace {

/// Offsets of the fields in the fixed part of the message.
namespace At {
constexpr std::size_t TdsVersion = 4, PacketSize = 8, OptionFlags2 = 25, OptionFlags3 = 27, HostName = 36,
                      UserName = 40, Password = 44, ApplicationName = 48, Extension = 56, Database = 68,
                      Sspi = 78, FixedPart = 86;
} // namespace At

constexpr std::uint8_t Odbc = 0x02;
constexpr std::uint8_t IntegratedSecurity = 0x80;
constexpr std::uint8_t HasExtension = 0x10;
constexpr std::size_t LongestName = 128;

using Message = std::span<const std::uint8_t>;

ByteReader readerAt(Message message, std::size_t offset)
{
    ByteReader reader(message);
    reader.takeBytes(offset);
    return reader;
}

/// A variable field: its offset and length are at `where`, the length in units of `unitSize` bytes.
Message field(Message message, std::size_t where, std::size_t unitSize)
{
    ByteReader entry = readerAt(message, where);
    const auto offset = entry.take<std::uint16_t>();
    const auto length = entry.take<std::uint16_t>();
    if (length == 0)
        return {};
    return readerAt(message, offset).takeBytes(length * unitSize);
}

Message nameField(Message message, std::size_t where)
{
    const Message name = field(message, where, 2);
    if (name.size() > 2 * LongestName)
        throw ProtocolError("A name in the login is too long.");
    return name;
}

bool requestsUtf8(Message message)
{
    const Message pointer = field(message, At::Extension, 1);
    ByteReader features = readerAt(message, ByteReader(pointer).take<std::uint32_t>());
    bool found = false;
    for (std::uint8_t feature; (feature = features.take<std::uint8_t>()) != LoginFeature::Terminator;) {
        found = found || feature == LoginFeature::Utf8Support;
        features.takeBytes(features.take<std::uint32_t>());
    }
    return found;
}

} // namespace

Bytes revealPassword(std::span<const std::uint8_t> obfuscated)
{
    Bytes plain(obfuscated.size());
    std::transform(obfuscated.begin(), obfuscated.end(), plain.begin(), [](std::uint8_t byte) {
        byte ^= 0xA5;
        return static_cast<std::uint8_t>(byte << 4 | byte >> 4);
    });
    return plain;
}

Login7 parseLogin7(Message message)
{
    const auto length = ByteReader(message).take<std::uint32_t>();
    if (length < At::FixedPart || length > message.size())
        throw ProtocolError("A login has an impossible length.");
    message = message.first(length);

    Login7 login;
    login.tdsVersion = readerAt(message, At::TdsVersion).take<std::uint32_t>();
    login.packetSize = readerAt(message, At::PacketSize).take<std::uint32_t>();
    login.integratedSecurity = message[At::OptionFlags2] & IntegratedSecurity;
    login.odbc = message[At::OptionFlags2] & Odbc;
    login.featureExtension = message[At::OptionFlags3] & HasExtension;
    login.userName = toUtf8(utf16From(nameField(message, At::UserName)));
    login.password = toUtf8(utf16From(revealPassword(nameField(message, At::Password))));
    login.database = toUtf8(utf16From(nameField(message, At::Database)));
    login.hostName = toUtf8(utf16From(nameField(message, At::HostName)));
    login.applicationName = toUtf8(utf16From(nameField(message, At::ApplicationName)));
    const Message sspi = field(message, At::Sspi, 1);
    login.sspi.assign(sspi.begin(), sspi.end());
    if (login.featureExtension)
        login.utf8Feature = requestsUtf8(message);
    return login;
}

} // namespace SampleServer
