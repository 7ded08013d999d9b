#pragma once

#include "Engine/Session.h"
#include "Wire/ByteReader.h"

namespace SampleServer {

/// A parameter of a procedure call (MS-TDS 2.2.6.6).
struct CallParameter : BatchParameter
{
    bool isOutput = false;
    bool isDefault = false; ///< the procedure's own default is asked for
};

/// A parameter of a type that is not read: its length is not known, so that nothing behind it can be read
/// either.
class UnsupportedParameter : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Takes one parameter off the front. Throws ProtocolError for one that is broken, UnsupportedParameter for
/// xml, sql_variant, user-defined types and tables.
CallParameter takeParameter(ByteReader &reader);

} // namespace SampleServer
