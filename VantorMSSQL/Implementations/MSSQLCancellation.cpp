#include "Implementations/MSSQLCancellation.h"

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <system_error>

namespace {

/// Ignored by default and not used elsewhere; an empty handler makes it interrupt poll().
constexpr int InterruptSignal = SIGURG;

void installInterruptHandler()
{
    static std::once_flag once;
    std::call_once(once, [] {
        struct sigaction current = {};
        sigaction(InterruptSignal, nullptr, &current);
        if (current.sa_handler != SIG_DFL && current.sa_handler != SIG_IGN)
            return;
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        sigaction(InterruptSignal, &action, nullptr);
    });
}

int openEvent()
{
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    return descriptor;
}

/// A packet, or a TLS record, whose packets are not visible.
struct Unit
{
    int length = 0;         ///< in bytes; 0 for neither
    bool isTheLast = false; ///< a packet that ends its message
};

/// Peeks at the next packet or record of a socket.
Unit nextUnit(int socket)
{
    // A packet begins with its type, its status and its length (MS-TDS 2.2.3.1), a record with its type, its
    // version and the length of what follows (RFC 5246 6.2.1); both lengths have two bytes.
    constexpr unsigned char ResponseType = 4;
    constexpr unsigned char EndOfMessage = 1;
    constexpr unsigned char ApplicationData = 23;
    constexpr int RecordHeaderSize = 5;
    unsigned char header[RecordHeaderSize];
    if (recv(socket, header, sizeof header, MSG_PEEK | MSG_DONTWAIT) != sizeof header)
        return {};
    if (header[0] == ResponseType)
        return {header[2] << 8 | header[3], (header[1] & EndOfMessage) != 0};
    if (header[0] == ApplicationData)
        return {RecordHeaderSize + (header[3] << 8 | header[4]), false};
    return {};
}

/// poll() that continues after signals, until the deadline.
void pollUntil(MSSQLCancellation::Clock::time_point deadline, pollfd *descriptors, nfds_t count)
{
    int ready = 0;
    do {
        int timeout = -1;
        if (deadline != MSSQLCancellation::Clock::time_point::max()) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline - MSSQLCancellation::Clock::now());
            timeout = static_cast<int>(std::max<std::int64_t>(0, left.count()));
        }
        ready = poll(descriptors, count, timeout);
    } while (ready < 0 && errno == EINTR);
}

/// The number of bytes that can be read at once; the largest number if it is unknown.
int availableBytes(int socket)
{
    int available = 0;
    return ioctl(socket, FIONREAD, &available) == 0 ? available : std::numeric_limits<int>::max();
}

/// Makes a socket readable only from that many bytes on.
void setLowWaterMark(int socket, int bytes)
{
    setsockopt(socket, SOL_SOCKET, SO_RCVLOWAT, &bytes, sizeof bytes);
}

} // namespace

MSSQLCancellation::MSSQLCancellation()
    : MSSQLCancellation(Patience())
{
}

MSSQLCancellation::MSSQLCancellation(Patience patience)
    : m_patience(patience)
    , m_wakeUp(openEvent())
{
    installInterruptHandler();
}

MSSQLCancellation::~MSSQLCancellation()
{
    close(m_wakeUp);
}

void MSSQLCancellation::beginRun()
{
    const std::lock_guard lock(m_mutex);
    if (m_runs++ > 0)
        return;
    eventfd_t discarded = 0;
    eventfd_read(m_wakeUp, &discarded);
    m_requested = false;
    m_attentionSent = false;
}

void MSSQLCancellation::endRun()
{
    const std::lock_guard lock(m_mutex);
    --m_runs;
}

void MSSQLCancellation::waitForAnswer(int socket, int packetSize)
{
    m_isStreaming = false;
    waitFor(socket);
    const Unit first = nextUnit(socket);
    if (first.length == 0)
        return;
    bool isCut = availableBytes(socket) < first.length;
    if (isCut) {
        setLowWaterMark(socket, first.length);
        waitFor(socket);
        isCut = availableBytes(socket) < first.length;
        setLowWaterMark(socket, 1);
    }
    // A server that pauses sends its partial packet; a full packet is followed by more data.
    m_isStreaming = isCut || (!first.isTheLast && first.length >= packetSize);
}

/// Waits until the socket is readable, a request arrives or the deadline passes.
void MSSQLCancellation::waitFor(int socket) const
{
    pollfd descriptors[] = {{socket, POLLIN, 0}, {m_wakeUp, POLLIN, 0}};
    pollUntil(m_deadline, descriptors, 2);
}

bool MSSQLCancellation::waitForStop(int endDescriptor) const
{
    pollfd descriptors[] = {{endDescriptor, POLLIN, 0}, {m_wakeUp, POLLIN, 0}};
    pollUntil(m_deadline, descriptors, 2);
    return descriptors[0].revents == 0;
}

void MSSQLCancellation::enterLibrary()
{
    const std::lock_guard lock(m_mutex);
    m_libraryThread = pthread_self();
    m_inLibrary = true;
}

void MSSQLCancellation::leaveLibrary()
{
    const std::lock_guard lock(m_mutex);
    m_inLibrary = false;
}

void MSSQLCancellation::attentionSent()
{
    if (!m_attentionSent.exchange(true))
        m_attentionTime = Clock::now();
}

bool MSSQLCancellation::wantsInterrupt() const
{
    return (m_requested && !m_attentionSent) || isPatienceOver();
}

bool MSSQLCancellation::isPatienceOver() const
{
    const Clock::time_point now = Clock::now();
    if (now > m_deadline.load())
        return true;
    const auto patience = m_isStreaming ? m_patience.inRows : m_patience.otherwise;
    return m_requested && m_attentionSent && now - m_attentionTime.load() > patience;
}

MSSQLCancellation::Action MSSQLCancellation::timeoutAction()
{
    if (isPatienceOver())
        return Action::GiveUpConnection;
    if (!wantsInterrupt())
        return Action::KeepWaiting;
    attentionSent();
    return Action::SendAttention;
}

bool MSSQLCancellation::request()
{
    const std::lock_guard lock(m_mutex);
    if (m_runs == 0)
        return false;
    m_requested = true;
    eventfd_write(m_wakeUp, 1);
    return true;
}

void MSSQLCancellation::interruptLibrary()
{
    const std::lock_guard lock(m_mutex);
    if (m_inLibrary)
        pthread_kill(m_libraryThread, InterruptSignal);
}
