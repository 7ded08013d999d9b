#include "Wire/WakeEvent.h"

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>

namespace SampleServer {

WakeEvent::WakeEvent()
    : m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!m_event)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

void WakeEvent::signal()
{
    ::eventfd_write(m_event.get(), 1);
}

void WakeEvent::clear()
{
    eventfd_t count = 0;
    ::eventfd_read(m_event.get(), &count);
}

} // namespace SampleServer
