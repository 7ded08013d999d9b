#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <vector>

#include <poll.h>

/// A TCP connection for exchanging PRELOGIN packets (MS-TDS 2.2.3, 2.2.6.5) before a deadline, independent of
/// db-lib. Blocks; used by one thread.
class MSSQLPreloginSocket
{
public:
    using Clock = std::chrono::steady_clock;
    enum class State { Good, TimedOut, Cancelled, Refused, Closed, Failed };

    /// Every wait ends when `cancelDescriptor` becomes readable; -1 for none. It must outlive the socket.
    explicit MSSQLPreloginSocket(Clock::time_point deadline, int cancelDescriptor = -1);
    ~MSSQLPreloginSocket();
    MSSQLPreloginSocket(const MSSQLPreloginSocket &) = delete;
    MSSQLPreloginSocket &operator=(const MSSQLPreloginSocket &) = delete;

    /// Connects to all addresses of the host at once and keeps the connection that is made first, whose
    /// address KNHostCache then prefers.
    bool connect(const QString &host, quint16 port);
    /// Sends one packet with up to 65527 bytes of content.
    bool sendPacket(const QByteArray &content);
    /// Reads at most `size` bytes of the content of the server's packets; empty at the end.
    QByteArray readContent(qsizetype size);
    /// Reads the rest of the current packet, or the whole next one.
    QByteArray readPacket();

    /// Why the last call failed.
    State state() const { return m_state; }
    bool hasTimedOut() const { return m_state == State::TimedOut || Clock::now() >= m_deadline; }
    /// The operating system's text for the state Failed; null otherwise.
    QString reason() const { return m_reason; }

private:
    int startConnecting(const QString &address, quint16 port);
    bool wait(short events);
    bool wait(std::vector<pollfd> &descriptors);
    bool waitOrCancel(std::vector<pollfd> &descriptors);
    bool fail(int error);
    QByteArray readExactly(qsizetype size);

    const Clock::time_point m_deadline;
    const int m_cancelDescriptor;
    int m_socket = -1;
    qsizetype m_contentLeft = 0;
    State m_state = State::Good;
    QString m_reason;
};
