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

/// The one instance that the Browser protocol lists.
struct BrowserInstance
{
    std::string hostName;
    std::string instanceName;
    ProgramVersion version;
    std::uint16_t tcpPort = 0;
};

/// The answer to a request (MC-SQLR 2.2): to everyone (2), to one (3), for one instance by its name (4, the
/// name, 0). Empty for an unknown instance and for what is no request: those get no answer.
std::optional<Bytes> browserResponse(std::span<const std::uint8_t> request, const BrowserInstance &instance);

/// Answers Browser requests on a UDP port from a thread of its own, until it is destroyed.
class BrowserResponder
{
public:
    /// Port 0 picks a free one. On a loopback address the loopback broadcast is heard as well.
    /// Throws like boundSocket().
    BrowserResponder(const std::string &address, std::uint16_t port, BrowserInstance instance);
    ~BrowserResponder();
    BrowserResponder(const BrowserResponder &) = delete;
    BrowserResponder &operator=(const BrowserResponder &) = delete;

    std::uint16_t port() const { return m_port; }

private:
    void serve();
    void answerFrom(int socket);

    BrowserInstance m_instance;
    std::vector<FileDescriptor> m_sockets; ///< the first one answers
    WakeEvent m_stop;
    std::uint16_t m_port = 0;
    std::atomic<bool> m_stopping = false;
    std::thread m_thread;
};

} // namespace SampleServer
