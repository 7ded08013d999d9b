#pragma once

#include "Wire/FileDescriptor.h"

namespace SampleServer {

/// Wakes a thread from poll(): its descriptor is readable from signal() to clear(). Thread-safe.
class WakeEvent
{
public:
    /// Throws std::system_error.
    WakeEvent();

    int descriptor() const { return m_event.get(); }
    void signal();
    void clear();

private:
    FileDescriptor m_event;
};

} // namespace SampleServer
