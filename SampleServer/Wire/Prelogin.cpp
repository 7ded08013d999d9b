#include "Wire/Prelogin.h"

#include "Wire/ByteReader.h"

#include <utility>
#include <vector>

namespace SampleServer {

namespace {

namespace Option {
constexpr std::uint8_t Version = 0, Encryption = 1, Instance = 2, ThreadId = 3, Mars = 4,
                       FederatedAuthentication = 6, Terminator = 0xFF;
} // namespace Option

/// Only PRELOGIN has big-endian offsets.
std::size_t takeBigEndian(ByteReader &reader)
{
    const auto bytes = reader.takeBytes(2);
    return static_cast<std::size_t>(bytes[0] << 8 | bytes[1]);
}

} // namespace

Prelogin parsePrelogin(std::span<const std::uint8_t> message)
{
    Prelogin prelogin;
    ByteReader options(message);
    for (std::uint8_t option; (option = options.take<std::uint8_t>()) != Option::Terminator;) {
        const std::size_t offset = takeBigEndian(options);
        const std::size_t length = takeBigEndian(options);
        ByteReader content(message);
        content.takeBytes(offset);
        content = ByteReader(content.takeBytes(length));
        if (option == Option::Encryption)
            prelogin.encryption = static_cast<Encryption>(content.take<std::uint8_t>());
        else if (option == Option::FederatedAuthentication)
            prelogin.federatedAuthentication = true;
    }
    return prelogin;
}

Encryption agreedEncryption(Encryption asked, TlsPolicy policy)
{
    const bool asksForAll = asked == Encryption::On || asked == Encryption::Required;
    switch (policy) {
    case TlsPolicy::Off:
        break;
    case TlsPolicy::Request:
        return asksForAll                 ? Encryption::On
               : asked == Encryption::Off ? Encryption::Off
                                          : Encryption::NotSupported;
    case TlsPolicy::Require:
        return asksForAll ? Encryption::On : Encryption::Required;
    }
    return Encryption::NotSupported;
}

Bytes preloginResponse(const Prelogin &request, Encryption encryption, const ProgramVersion &version)
{
    std::vector<std::pair<std::uint8_t, Bytes>> options = {
        {Option::Version,
         {version.major, version.minor, static_cast<std::uint8_t>(version.build >> 8),
          static_cast<std::uint8_t>(version.build), 0, 0}},
        {Option::Encryption, {static_cast<std::uint8_t>(encryption)}},
        {Option::Instance, {0}},
        {Option::ThreadId, {}},
        {Option::Mars, {0}},
    };
    if (request.federatedAuthentication)
        options.push_back({Option::FederatedAuthentication, {0}});

    Bytes response;
    const auto putBigEndian = [&](std::size_t number) {
        response.push_back(static_cast<std::uint8_t>(number >> 8));
        response.push_back(static_cast<std::uint8_t>(number));
    };
    std::size_t offset = options.size() * 5 + 1;
    for (const auto &[option, content] : options) {
        response.push_back(option);
        putBigEndian(offset);
        putBigEndian(content.size());
        offset += content.size();
    }
    response.push_back(Option::Terminator);
    for (const auto &[option, content] : options)
        response.insert(response.end(), content.begin(), content.end());
    return response;
}

} // namespace SampleServer
