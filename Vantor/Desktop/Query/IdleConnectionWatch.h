#pragma once

#include <QSocketNotifier>

/// Notices that a connection is closed while nothing uses it. A server sends nothing between runs unless it
/// closes the connection, so everything that can be read means its end. On the UI thread.
class IdleConnectionWatch : public QObject
{
    Q_OBJECT

public:
    /// Owns the descriptor, see VantorDatabaseClient::openIdleDescriptor().
    explicit IdleConnectionWatch(int descriptor);
    ~IdleConnectionWatch() override;

Q_SIGNALS:
    /// Emitted once.
    void closed();

private:
    const int m_descriptor;
    QSocketNotifier m_notifier;
};
