#include "Wire/BrowserResponder.h"

#include "Wire/SocketAddress.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

using namespace SampleServer;

namespace {

const BrowserInstance Instance{"HOST", "Sample", {16, 0, 1000, 6}, 14330};
const std::string Listing =
    "ServerName;HOST;InstanceName;Sample;IsClustered;No;Version;16.0.1000.6;tcp;14330;;";

Bytes bytes(const std::string &text)
{
    return {text.begin(), text.end()};
}

/// The listing in a response; empty for none.
std::string listing(const Bytes &request)
{
    const auto response = browserResponse(request, Instance);
    if (!response)
        return {};
    EXPECT_EQ((*response)[0], 5);
    EXPECT_EQ(std::size_t((*response)[1] | (*response)[2] << 8), response->size() - 3);
    return {response->begin() + 3, response->end()};
}

sockaddr_in addressOf(const char *host, std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    ::inet_pton(AF_INET, host, &address.sin_addr);
    return address;
}

/// Sends a request and waits for one answer; empty when none comes in time.
std::string ask(const char *host, std::uint16_t port, const std::string &request, int milliseconds)
{
    const FileDescriptor socket = boundSocket(SOCK_DGRAM, "127.0.0.1", 0);
    const int yes = 1;
    ::setsockopt(socket.get(), SOL_SOCKET, SO_BROADCAST, &yes, sizeof yes);
    const sockaddr_in address = addressOf(host, port);
    EXPECT_EQ(::sendto(socket.get(), request.data(), request.size(), 0,
                       reinterpret_cast<const sockaddr *>(&address), sizeof address),
              static_cast<ssize_t>(request.size()));
    pollfd poller{socket.get(), POLLIN, 0};
    char answer[1024];
    if (::poll(&poller, 1, milliseconds) <= 0)
        return {};
    const ssize_t size = ::recv(socket.get(), answer, sizeof answer, 0);
    return size > 3 ? std::string(answer + 3, static_cast<std::size_t>(size) - 3) : std::string();
}

} // namespace

TEST(BrowserResponder, ListsItsInstanceForBroadcastAndUnicast)
{
    EXPECT_EQ(listing({2}), Listing);
    EXPECT_EQ(listing({3}), Listing);
}

TEST(BrowserResponder, ListsAnInstanceAskedForByName)
{
    EXPECT_EQ(listing(bytes(std::string("\4SAMPLE\0", 8))), Listing);
    EXPECT_EQ(listing(bytes(std::string("\4Sample"))), Listing);
}

TEST(BrowserResponder, HasNoAnswerForUnknownInstancesAndRequests)
{
    EXPECT_EQ(listing(bytes(std::string("\4OTHER\0", 7))), "");
    EXPECT_EQ(listing(bytes(std::string("\4\0", 2))), "");
    EXPECT_EQ(listing({}), "");
    EXPECT_EQ(listing({15}), "");
}

TEST(BrowserResponder, AnswersOverUdpAfterMalformedRequests)
{
    BrowserResponder responder("127.0.0.1", 0, Instance);
    EXPECT_EQ(ask("127.0.0.1", responder.port(), std::string("\4OTHER\0", 7), 100), "");
    EXPECT_EQ(ask("127.0.0.1", responder.port(), std::string(2000, '\4'), 100), "");
    EXPECT_EQ(ask("127.0.0.1", responder.port(), std::string("\4SAMPLE\0", 8), 5000), Listing);
}

TEST(BrowserResponder, AnswersTheLoopbackBroadcast)
{
    BrowserResponder responder("127.0.0.1", 0, Instance);
    EXPECT_EQ(ask("127.255.255.255", responder.port(), "\2", 5000), Listing);
}
