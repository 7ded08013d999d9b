#pragma once

#include "Types/Value.h"
#include "Wire/FileDescriptor.h"
#include "Wire/TokenWriter.h"
#include "Wire/WakeEvent.h"

#include <atomic>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace SampleServer {

/// The instance listed by the Browser protocol.
struct BrowserInstance
{
    std::string hostName;
    std::string instanceName;
    ProgramVersion version;
    std::uint16_t tcpPort = 0;
};

/// The answer to a request (MC-SQLR 2.2): broadcast (2), unicast (3), or one instance by name (4, the name,
/// 0). Empty for an unknown instance and for invalid requests, which get no answer.
std::optional<Bytes> browserResponse(std::span<const std::uint8_t> request, const BrowserInstance &instance);

/// Answers Browser requests on a UDP port from its own thread until it is destroyed.
class BrowserResponder
{
public:
    /// Port 0 selects a free one. On a loopback address it also receives the loopback broadcast. Throws like
    /// boundSocket().
    BrowserResponder(const std::string &address, std::uint16_t port, BrowserInstance instance);
    ~BrowserResponder();
    BrowserResponder(const BrowserResponder &) = delete;
    BrowserResponder &operator=(const BrowserResponder &) = delete;

    std::uint16_t port() const { return m_port; }

private:
    void serve();
    void answerFrom(int socket);

    BrowserInstance m_instance;
    std::vector<FileDescriptor> m_sockets; ///< the first one sends the answers
    WakeEvent m_stop;
    std::uint16_t m_port = 0;
    std::atomic<bool> m_stopping = false;
    std::thread m_thread;
};

} // namespace SampleServer
