#pragma once

#include <sys/types.h>

#include <chrono>
#include <thread>

/// A reference to a socket that another component owns and may close at any time. Any thread.
class MSSQLSocketReference
{
public:
    /// Refers to no socket.
    MSSQLSocketReference() = default;
    explicit MSSQLSocketReference(int descriptor);

    /// Returns a new descriptor for the same socket, which the caller owns; -1 if the socket is closed.
    int duplicate() const;

private:
    int m_descriptor = -1;
    ino_t m_inode = 0; ///< descriptor numbers are reused, the inode of an open socket is not
};

/// Closes a connection whose server sends without end. db-lib checks time-outs and interrupts only while it
/// waits, and it never waits while there is data to read.
/// || During its lifetime, a thread checks the socket once `patience` has passed. If more data arrives in
/// each quarter of a second for three seconds, it shuts the connection down.
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

    const int m_socket; ///< owned duplicate of the socket's descriptor, or -1
    const int m_end;    ///< an eventfd
    std::thread m_thread;
};
