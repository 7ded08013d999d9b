#include "Wire/TdsVersion.h"

namespace SampleServer {

std::optional<TdsVersion> tdsVersionFromLogin(std::uint32_t loginVersion)
{
    switch (loginVersion >> 24) {
    case 0x71:
        return TdsVersion::V71;
    case 0x72:
        return TdsVersion::V72;
    case 0x73:
        return (loginVersion >> 16 & 0xFF) >= 0x0B ? TdsVersion::V73B : TdsVersion::V73A;
    case 0x74:
        return TdsVersion::V74;
    default:
        return std::nullopt;
    }
}

std::uint32_t loginAckVersion(TdsVersion version)
{
    switch (version) {
    case TdsVersion::V71:
        return 0x71000001;
    case TdsVersion::V72:
        return 0x72090002;
    case TdsVersion::V73A:
        return 0x730A0003;
    case TdsVersion::V73B:
        return 0x730B0003;
    case TdsVersion::V74:
        break;
    }
    return 0x74000004;
}

std::optional<TdsVersion> tdsVersionFromText(std::string_view text)
{
    if (text == "7.1")
        return TdsVersion::V71;
    if (text == "7.2")
        return TdsVersion::V72;
    if (text == "7.3")
        return TdsVersion::V73B;
    if (text == "7.4")
        return TdsVersion::V74;
    return std::nullopt;
}

} // namespace SampleServer
