#include "Wire/RequestParser.h"

#include "Types/Text.h"
#include "Wire/Utf16Bytes.h"

namespace SampleServer {

namespace {

std::string takeText(ByteReader &reader, std::size_t bytes)
{
    return toUtf8(utf16From(reader.takeBytes(bytes)));
}

/// A B_VARCHAR.
std::string takeShortText(ByteReader &reader)
{
    return takeText(reader, std::size_t{2} * reader.take<std::uint8_t>());
}

std::string isolationPrefix(std::uint8_t level)
{
    switch (level) {
    case 1:
        return "SET TRANSACTION ISOLATION LEVEL READ UNCOMMITTED; ";
    case 2:
        return "SET TRANSACTION ISOLATION LEVEL READ COMMITTED; ";
    case 3:
        return "SET TRANSACTION ISOLATION LEVEL REPEATABLE READ; ";
    case 4:
        return "SET TRANSACTION ISOLATION LEVEL SERIALIZABLE; ";
    case 5:
        return "SET TRANSACTION ISOLATION LEVEL SNAPSHOT; ";
    default:
        return {};
    }
}

std::string takeBegin(ByteReader &request)
{
    const std::string prefix = isolationPrefix(request.take<std::uint8_t>());
    takeShortText(request); // the name has no effect on an outermost transaction
    return prefix + "BEGIN TRANSACTION";
}

} // namespace

void skipHeaders(ByteReader &request, TdsVersion version)
{
    if (version < TdsVersion::V72)
        return;
    const auto length = request.take<std::uint32_t>();
    if (length < sizeof length)
        throw ProtocolError("A request's headers have an impossible length.");
    request.takeBytes(length - sizeof length);
}

std::string parseBatch(std::span<const std::uint8_t> payload, TdsVersion version)
{
    ByteReader request(payload);
    skipHeaders(request, version);
    return takeText(request, request.remaining());
}

std::optional<std::string> parseTransactionRequest(std::span<const std::uint8_t> payload, TdsVersion version)
{
    enum : std::uint16_t { Begin = 5, Commit = 7, Rollback = 8, Save = 9 };
    constexpr std::uint8_t beginAnother = 1;
    ByteReader request(payload);
    skipHeaders(request, version);
    const auto kind = request.take<std::uint16_t>();
    switch (kind) {
    case Begin:
        return takeBegin(request);
    case Commit:
    case Rollback: {
        takeShortText(request);
        std::string sql = kind == Commit ? "COMMIT TRANSACTION" : "ROLLBACK TRANSACTION";
        if (request.take<std::uint8_t>() & beginAnother)
            sql += "; " + takeBegin(request);
        return sql;
    }
    case Save: {
        // The name becomes a delimited identifier, so a bracket in it must be escaped.
        std::string name;
        for (const char c : takeShortText(request))
            name += c == ']' ? "]]" : std::string(1, c);
        return "SAVE TRANSACTION [" + name + ']';
    }
    default:
        return std::nullopt;
    }
}

} // namespace SampleServer
