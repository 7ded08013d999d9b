#pragma once

#include "Engine/Session.h"
#include "Wire/ByteReader.h"

namespace SampleServer {

/// A parameter of a procedure call (MS-TDS 2.2.6.6).
struct CallParameter : BatchParameter
{
    bool isOutput = false;
    bool isDefault = false; ///< use the procedure's default value
};

/// A parameter of an unsupported type: its length is unknown, so that later parameters cannot be read either.
class UnsupportedParameter : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads the next parameter. Throws ProtocolError for an invalid one, UnsupportedParameter for xml,
/// sql_variant, user-defined types and tables.
CallParameter takeParameter(ByteReader &reader);

} // namespace SampleServer
