#include "Implementations/MSSQLPreloginSocket.h"

#include "Foundation/KNHostCache.h"
#include "Implementations/MSSQLOwnSockets.h"

#include <netdb.h>
#include <poll.h>
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

/// The address of a host; names are resolved through the cache. Null if it has none.
AddressList addressOf(const QString &host, quint16 port)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    addrinfo *found = nullptr;
    const QByteArray address = KNHostCache::sharedInstance()->cachedIPAddressForHost(host).toUtf8();
    if (getaddrinfo(address.constData(), QByteArray::number(port).constData(), &hints, &found) != 0)
        found = nullptr;
    return {found, &freeaddrinfo};
}

} // namespace

MSSQLPreloginSocket::MSSQLPreloginSocket(Clock::time_point deadline, int cancelDescriptor)
    : m_deadline(deadline)
    , m_cancelDescriptor(cancelDescriptor)
{
}

MSSQLPreloginSocket::~MSSQLPreloginSocket()
{
    if (m_socket < 0)
        return;
    MSSQLOwnSockets::remove(m_socket);
    close(m_socket);
}

bool MSSQLPreloginSocket::connect(const QString &host, quint16 port)
{
    const AddressList address = addressOf(host, port);
    if (!address) {
        m_state = State::Failed;
        m_reason = QStringLiteral("The name could not be resolved to an address.");
        return false;
    }
    m_socket = socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_socket < 0)
        return fail(errno);
    MSSQLOwnSockets::add(m_socket);
    if (::connect(m_socket, address->ai_addr, address->ai_addrlen) == 0)
        return true;
    if (errno != EINPROGRESS)
        return fail(errno);
    if (!wait(POLLOUT))
        return false;
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(m_socket, SOL_SOCKET, SO_ERROR, &error, &size) != 0)
        error = errno;
    return error == 0 || fail(error);
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

/// Waits until the socket is ready; false if the deadline has passed or the wait was cancelled.
bool MSSQLPreloginSocket::wait(short events)
{
    pollfd descriptors[] = {{m_socket, events, 0}, {m_cancelDescriptor, POLLIN, 0}};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Clock::now());
        constexpr qint64 Longest = 3'600'000;
        const auto timeout = std::clamp<qint64>(left.count(), 0, Longest);
        const int ready = poll(descriptors, 2, static_cast<int>(timeout));
        if (ready < 0 && errno != EINTR)
            return fail(errno);
        // Checked even if data is available: a server may send empty packets without end.
        if (Clock::now() >= m_deadline) {
            m_state = State::TimedOut;
            return false;
        }
        if (ready <= 0)
            continue;
        if (descriptors[1].revents != 0) {
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
