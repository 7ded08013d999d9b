#include "Implementations/MSSQLPreloginSocket.h"

#include "Foundation/KNHostCache.h"
#include "Implementations/MSSQLOwnSockets.h"

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <memory>

namespace {

constexpr qsizetype PreloginHeaderSize = 8;

using AddressList = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

/// The socket address of a numeric address; null if it is none.
AddressList socketAddressOf(const QString &address, quint16 port)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    addrinfo *found = nullptr;
    if (getaddrinfo(address.toUtf8().constData(), QByteArray::number(port).constData(), &hints, &found) != 0)
        found = nullptr;
    return {found, &freeaddrinfo};
}

void closeSocket(int descriptor)
{
    MSSQLOwnSockets::remove(descriptor);
    close(descriptor);
}

/// The error of a connection attempt that has ended; 0 if it succeeded.
int errorOf(int descriptor)
{
    int error = 0;
    socklen_t size = sizeof error;
    return getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

} // namespace

MSSQLPreloginSocket::MSSQLPreloginSocket(Clock::time_point deadline, int cancelDescriptor)
    : m_deadline(deadline)
    , m_cancelDescriptor(cancelDescriptor)
{
}

MSSQLPreloginSocket::~MSSQLPreloginSocket()
{
    if (m_socket >= 0)
        closeSocket(m_socket);
}

/// Returns the descriptor of a socket that is connecting; -1, with a state, if it cannot.
int MSSQLPreloginSocket::startConnecting(const QString &address, quint16 port)
{
    const AddressList target = socketAddressOf(address, port);
    if (!target) {
        m_state = State::Failed;
        m_reason = QStringLiteral("The name could not be resolved to an address.");
        return -1;
    }
    const int descriptor = socket(target->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) {
        fail(errno);
        return -1;
    }
    MSSQLOwnSockets::add(descriptor);
    if (::connect(descriptor, target->ai_addr, target->ai_addrlen) == 0 || errno == EINPROGRESS)
        return descriptor;
    fail(errno);
    closeSocket(descriptor);
    return -1;
}

bool MSSQLPreloginSocket::connect(const QString &host, quint16 port)
{
    QStringList addresses; // parallel to `attempts`
    std::vector<pollfd> attempts;
    const QStringList known = KNHostCache::sharedInstance()->cachedIPAddressesForHost(host);
    for (const QString &address : known) {
        if (const int descriptor = startConnecting(address, port); descriptor >= 0) {
            addresses.append(address);
            attempts.push_back({descriptor, POLLOUT, 0});
        }
    }
    while (m_socket < 0 && !attempts.empty() && wait(attempts)) {
        for (std::size_t i = attempts.size(); i-- > 0 && m_socket < 0;) {
            if (attempts[i].revents == 0)
                continue;
            const int descriptor = attempts[i].fd;
            const QString address = addresses.takeAt(static_cast<qsizetype>(i));
            attempts.erase(attempts.begin() + static_cast<std::ptrdiff_t>(i));
            if (const int error = errorOf(descriptor); error != 0) {
                fail(error);
                closeSocket(descriptor);
                continue;
            }
            m_socket = descriptor;
            m_state = State::Good;
            m_reason.clear();
            if (known.size() > 1)
                KNHostCache::sharedInstance()->prefer(host, address);
        }
    }
    for (const pollfd &attempt : attempts)
        closeSocket(attempt.fd);
    return m_socket >= 0;
}

bool MSSQLPreloginSocket::sendPacket(const QByteArray &content)
{
    constexpr char PreloginPacket = 0x12;
    constexpr char EndOfMessage = 1;
    const auto length = PreloginHeaderSize + content.size();
    const char header[PreloginHeaderSize] = {
        PreloginPacket, EndOfMessage, static_cast<char>(length >> 8), static_cast<char>(length), 0, 0, 0, 0};
    const QByteArray packet = QByteArray(header, PreloginHeaderSize) + content;
    for (qsizetype sent = 0; sent < packet.size();) {
        const ssize_t count = send(m_socket, packet.constData() + sent,
                                   static_cast<std::size_t>(packet.size() - sent), MSG_NOSIGNAL);
        if (count >= 0)
            sent += count;
        else if (errno != EAGAIN && errno != EINTR)
            return fail(errno);
        else if (!wait(POLLOUT))
            return false;
    }
    return true;
}

QByteArray MSSQLPreloginSocket::readContent(qsizetype size)
{
    while (m_contentLeft == 0) {
        const QByteArray header = readExactly(PreloginHeaderSize);
        if (header.isEmpty())
            return QByteArray();
        const auto byte = [&](int index) { return static_cast<unsigned char>(header.at(index)); };
        m_contentLeft = std::max<qsizetype>(0, (byte(2) << 8 | byte(3)) - PreloginHeaderSize);
    }
    QByteArray content = readExactly(std::min(size, m_contentLeft));
    m_contentLeft -= content.size();
    return content;
}

QByteArray MSSQLPreloginSocket::readPacket()
{
    return readContent(std::numeric_limits<qsizetype>::max());
}

QByteArray MSSQLPreloginSocket::readExactly(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype got = 0; got < size;) {
        if (!wait(POLLIN))
            return QByteArray();
        const ssize_t count = recv(m_socket, bytes.data() + got, static_cast<std::size_t>(size - got), 0);
        if (count == 0) {
            m_state = State::Closed;
            return QByteArray();
        }
        if (count > 0) {
            got += count;
        } else if (errno != EAGAIN && errno != EINTR) {
            fail(errno);
            return QByteArray();
        }
    }
    return bytes;
}

bool MSSQLPreloginSocket::wait(short events)
{
    std::vector<pollfd> descriptors = {{m_socket, events, 0}};
    return wait(descriptors);
}

/// Waits until one of the descriptors is ready; false if the deadline has passed or the wait was cancelled.
bool MSSQLPreloginSocket::wait(std::vector<pollfd> &descriptors)
{
    descriptors.push_back({m_cancelDescriptor, POLLIN, 0});
    const bool isReady = waitOrCancel(descriptors);
    descriptors.pop_back();
    return isReady;
}

/// wait(), with the descriptor that cancels it at the end of the list.
bool MSSQLPreloginSocket::waitOrCancel(std::vector<pollfd> &descriptors)
{
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Clock::now());
        constexpr qint64 Longest = 3'600'000;
        const auto timeout = std::clamp<qint64>(left.count(), 0, Longest);
        const int ready = poll(descriptors.data(), descriptors.size(), static_cast<int>(timeout));
        if (ready < 0 && errno != EINTR)
            return fail(errno);
        // Checked even if data is available: a server may send empty packets without end.
        if (Clock::now() >= m_deadline) {
            m_state = State::TimedOut;
            return false;
        }
        if (ready <= 0)
            continue;
        if (descriptors.back().revents != 0) {
            m_state = State::Cancelled;
            return false;
        }
        return true;
    }
}

bool MSSQLPreloginSocket::fail(int error)
{
    m_state = error == ECONNREFUSED                   ? State::Refused
              : error == ECONNRESET || error == EPIPE ? State::Closed
              : error == ETIMEDOUT                    ? State::TimedOut
                                                      : State::Failed;
    m_reason = QString::fromLocal8Bit(strerror(error)) + u'.';
    return false;
}
