#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"
#include "SSH/KNSSHTunnelModel.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

class KNSSHAskPass;

/// A loopback port that the system's `ssh` forwards to a host and port as seen from the SSH server.
/// Connections with the same server and target share a tunnel; it closes when its last user releases it. Any
/// thread.
class KNSHARED_EXPORT KNSSHTunnel
{
    struct Private
    {
    };

public:
    /// Returns an existing tunnel or opens one; null with an error in the domain KNSSHCommand::ErrorDomain on
    /// failure. Blocks for at most twice the timeout.
    static std::shared_ptr<KNSSHTunnel> open(const KNSSHTunnelModel &model, const QString &host, quint16 port,
                                             std::chrono::seconds timeout, KNError *error);

    KNSSHTunnel(Private, const KNSSHTunnelModel &model, const QString &host, quint16 port,
                std::chrono::seconds timeout);
    ~KNSSHTunnel();
    KNSSHTunnel(const KNSSHTunnel &) = delete;
    KNSSHTunnel &operator=(const KNSSHTunnel &) = delete;

    /// The port on 127.0.0.1.
    quint16 localPort() const { return m_localPort; }
    bool isAlive() const;
    /// Whether ssh has reported that its server could not reach the host. The report may arrive after the
    /// forwarded connection has closed, so this waits for it, for `timeout` at most.
    bool couldNotReachHost(std::chrono::milliseconds timeout);

private:
    enum class State { Opening, Open, Ended };

    bool leadsTo(const KNSSHTunnelModel &model, const QString &host, quint16 port) const;
    bool waitUntilOpen(KNError *error);
    void keep();
    bool serve(bool isLastAttempt);
    void noteUnreachableHost();
    void change(State state, const KNError &error = {});
    KNError explained(const QString &complaints, const KNSSHAskPass &askPass) const;
    KNError missingPassphrase(const KNError &error, const KNSSHAskPass &askPass) const;

    const KNSSHTunnelModel m_model;
    const QString m_host;
    const quint16 m_port;
    const std::chrono::seconds m_timeout;
    const int m_stop; ///< an eventfd
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    State m_state = State::Opening;   ///< guarded by m_mutex
    KNError m_error;                  ///< guarded by m_mutex
    bool m_couldNotReachHost = false; ///< guarded by m_mutex
    quint16 m_localPort = 0;          ///< set before the tunnel is open
    std::thread m_keeper;             ///< ssh ends with the thread that started it
};
