#pragma once

#include "Wire/ParameterReader.h"
#include "Wire/TdsVersion.h"

#include <optional>
#include <string>
#include <vector>

namespace SampleServer {

/// A remote procedure call (MS-TDS 2.2.6.6).
struct ProcedureCall
{
    std::string procedure; ///< its name, or the name of its number
    std::vector<CallParameter> parameters;
    std::string refusal; ///< why not all parameters could be read; empty if they were

    /// Whether the procedure is sp_executesql.
    bool executesSql() const;
    /// The statement of sp_executesql; empty if it is missing, NULL or not Unicode text.
    std::optional<std::string> statement() const;
    /// The parameters of sp_executesql's statement; those without names in the call get the declared names.
    std::vector<CallParameter> statementParameters() const;
};

/// Throws ProtocolError.
ProcedureCall parseProcedureCall(std::span<const std::uint8_t> payload, TdsVersion version);

} // namespace SampleServer
