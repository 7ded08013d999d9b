#include "Wire/ProcedureCall.h"

#include "Types/Text.h"
#include "Wire/RequestParser.h"
#include "Wire/Utf16Bytes.h"

namespace SampleServer {

namespace {

constexpr std::uint16_t ProcedureByNumber = 0xFFFF;
constexpr std::size_t StatementIndex = 0, DeclarationsIndex = 1, FirstArgument = 2;

/// The procedures with a number, from 1.
constexpr const char *WellKnownProcedures[] = {
    "sp_cursor",          "sp_cursoropen",  "sp_cursorprepare", "sp_cursorexecute", "sp_cursorprepexec",
    "sp_cursorunprepare", "sp_cursorfetch", "sp_cursoroption",  "sp_cursorclose",   "sp_executesql",
    "sp_prepare",         "sp_execute",     "sp_prepexec",      "sp_prepexecrpc",   "sp_unprepare"};

std::string takeProcedure(ByteReader &request)
{
    const auto nameLength = request.take<std::uint16_t>();
    if (nameLength != ProcedureByNumber)
        return toUtf8(utf16From(request.takeBytes(std::size_t{2} * nameLength)));
    const auto number = request.take<std::uint16_t>();
    if (number < 1 || number > std::size(WellKnownProcedures))
        return "#" + std::to_string(number);
    return WellKnownProcedures[number - 1];
}

/// "@a" and "@b" of "@a int, @b decimal(9, 2) OUTPUT".
std::vector<std::string> declaredNames(std::string_view declarations)
{
    std::vector<std::string> names;
    for (std::size_t at = 0; (at = declarations.find('@', at)) != std::string_view::npos;) {
        const std::size_t end = std::min(declarations.find_first_of(" \t\r\n,", at), declarations.size());
        names.emplace_back(declarations.substr(at, end - at));
        at = end;
    }
    return names;
}

} // namespace

bool ProcedureCall::executesSql() const
{
    return asciiUpper(procedure) == "SP_EXECUTESQL";
}

std::optional<std::string> ProcedureCall::statement() const
{
    if (parameters.empty() || parameters[StatementIndex].type.id != TypeId::NVarChar)
        return std::nullopt;
    const auto *text = std::get_if<std::string>(&parameters[StatementIndex].value);
    return text ? std::optional(*text) : std::nullopt;
}

std::vector<CallParameter> ProcedureCall::statementParameters() const
{
    if (parameters.size() <= FirstArgument)
        return {};
    const auto *declarations = std::get_if<std::string>(&parameters[DeclarationsIndex].value);
    const auto names = declaredNames(declarations ? *declarations : "");
    std::vector<CallParameter> arguments(parameters.begin() + FirstArgument, parameters.end());
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        if (arguments[index].name.empty() && index < names.size())
            arguments[index].name = names[index];
    }
    return arguments;
}

ProcedureCall parseProcedureCall(std::span<const std::uint8_t> payload, TdsVersion version)
{
    ByteReader request(payload);
    skipHeaders(request, version);
    ProcedureCall call;
    call.procedure = takeProcedure(request);
    request.take<std::uint16_t>(); // options
    try {
        while (!request.atEnd())
            call.parameters.push_back(takeParameter(request));
    } catch (const UnsupportedParameter &unsupported) {
        call.refusal = unsupported.what();
    }
    return call;
}

} // namespace SampleServer
