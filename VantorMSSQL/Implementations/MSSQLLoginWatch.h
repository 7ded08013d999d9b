#pragma once

#include "Implementations/MSSQLOwnSockets.h"

#include <functional>
#include <thread>

class MSSQLCancellation;

/// Ends a login inside db-lib when it is cancelled or its deadline has passed. db-lib calls no callback
/// during a login, and a signal only prolongs its wait. Therefore the watch shuts down the socket that db-lib
/// has opened since the watch began, as if the server had closed it. Logins must be serialised, or the socket
/// could belong to another login.
class MSSQLLoginWatch
{
public:
    /// `port` is the port that db-lib connects to. `giveUp` is called once, on the watch's thread, if db-lib
    /// does not return although its socket is shut down: it may never return, and other logins need not wait
    /// for it. The cancellation must outlive the watch.
    MSSQLLoginWatch(const MSSQLCancellation &cancellation, quint16 port, std::function<void()> giveUp);
    /// Ends the watch after the login.
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
