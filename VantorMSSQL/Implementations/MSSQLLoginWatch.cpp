#include "Implementations/MSSQLLoginWatch.h"

#include "Implementations/MSSQLCancellation.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace {

int openEndEvent()
{
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    return descriptor;
}

} // namespace

MSSQLLoginWatch::MSSQLLoginWatch(const MSSQLCancellation &cancellation, quint16 port,
                                 std::function<void()> giveUp)
    : m_cancellation(cancellation)
    , m_port(port)
    , m_giveUp(std::move(giveUp))
    , m_before(MSSQLOwnSockets::open())
    , m_end(openEndEvent())
    , m_thread([this] { watch(); })
{
}

MSSQLLoginWatch::~MSSQLLoginWatch()
{
    eventfd_write(m_end, 1);
    m_thread.join();
    close(m_end);
}

void MSSQLLoginWatch::watch() const
{
    if (!m_cancellation.waitForStop(m_end))
        return;
    // If a name has several addresses, db-lib continues with the next one.
    constexpr int Pause = 20; // milliseconds
    constexpr std::chrono::seconds Patience(5);
    const auto last = MSSQLCancellation::Clock::now() + Patience;
    pollfd end = {m_end, POLLIN, 0};
    do {
        MSSQLOwnSockets::shutDown(m_port, m_before);
        if (poll(&end, 1, Pause) > 0)
            return;
    } while (MSSQLCancellation::Clock::now() < last);
    // From now on a new socket may be another login's.
    m_giveUp();
}
