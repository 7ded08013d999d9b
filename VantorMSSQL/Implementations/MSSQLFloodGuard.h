#pragma once

#include <sys/types.h>

#include <chrono>
#include <thread>

/// A socket that another part of the program owns and may close at any time. Any thread.
class MSSQLSocketReference
{
public:
    /// Refers to no socket.
    MSSQLSocketReference() = default;
    explicit MSSQLSocketReference(int descriptor);

    /// A descriptor of the caller's own for the same socket; -1 when it is closed.
    int duplicate() const;

private:
    int m_descriptor = -1;
    ino_t m_inode = 0; ///< a descriptor's number is used again for other files, an open socket's inode is not
};

/// Ends a connection whose server sends without end. db-lib looks at time-outs and interrupts only while it
/// waits, and it never waits while there is something to read.
///
/// While it lives, a thread looks at the socket once `patience` has passed; when more has come in each
/// quarter of a second for three seconds, it shuts the connection down.
class MSSQLFloodGuard
{
public:
    MSSQLFloodGuard(const MSSQLSocketReference &socket, std::chrono::milliseconds patience);
    ~MSSQLFloodGuard();
    MSSQLFloodGuard(const MSSQLFloodGuard &) = delete;
    MSSQLFloodGuard &operator=(const MSSQLFloodGuard &) = delete;

private:
    void watch(std::chrono::milliseconds patience) const;
    bool isOverAfter(std::chrono::milliseconds time) const;

    const int m_socket; ///< a descriptor of its own, or -1
    const int m_end;    ///< an eventfd
    std::thread m_thread;
};
