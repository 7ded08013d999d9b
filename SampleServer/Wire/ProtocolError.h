#pragma once

#include <stdexcept>

namespace SampleServer {

/// The client sent what the protocol does not allow; its connection ends.
class ProtocolError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace SampleServer
