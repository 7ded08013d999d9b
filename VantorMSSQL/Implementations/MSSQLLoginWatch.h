#pragma once

#include "Implementations/MSSQLOwnSockets.h"

#include <functional>
#include <thread>

class MSSQLCancellation;

/// Ends a login inside db-lib when it is cancelled or its deadline has passed. db-lib calls nothing back
/// during a login, and a signal only prolongs its wait. So the socket that it has opened since the watch
/// began is shut down, as if the server had closed it. Logins must be serialised, or it could be another
/// login's socket.
class MSSQLLoginWatch
{
public:
    /// `port` is the one that db-lib connects to. `giveUp` is called once, on the watch's thread, when db-lib
    /// does not return although its socket is gone: it never may, and other logins need not wait for it. The
    /// cancellation must outlive the watch.
    MSSQLLoginWatch(const MSSQLCancellation &cancellation, quint16 port, std::function<void()> giveUp);
    /// The login is over.
    ~MSSQLLoginWatch();
    MSSQLLoginWatch(const MSSQLLoginWatch &) = delete;
    MSSQLLoginWatch &operator=(const MSSQLLoginWatch &) = delete;

private:
    void watch() const;

    const MSSQLCancellation &m_cancellation;
    const quint16 m_port;
    const std::function<void()> m_giveUp;
    const std::set<ino_t> m_before;
    const int m_end; ///< an eventfd
    std::thread m_thread;
};
