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
    std::string procedure; ///< its name, or the name that belongs to its number
    std::vector<CallParameter> parameters;
    std::string refusal; ///< why the parameters could not all be read; empty when they were

    /// Whether sp_executesql is called.
    bool executesSql() const;
    /// The statement of sp_executesql; empty when it is missing, NULL or no Unicode text.
    std::optional<std::string> statement() const;
    /// The parameters of sp_executesql's statement, named as its declarations name them where the call does
    /// not.
    std::vector<CallParameter> statementParameters() const;
};

/// Throws ProtocolError.
ProcedureCall parseProcedureCall(std::span<const std::uint8_t> payload, TdsVersion version);

} // namespace SampleServer
