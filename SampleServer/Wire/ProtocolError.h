#pragma once

#include <stdexcept>

namespace SampleServer {

/// The client violated the protocol; its connection ends.
class ProtocolError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace SampleServer
