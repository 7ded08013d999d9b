#include "Engine/Server.h"
#include "Wire/BrowserResponder.h"
#include "Wire/Connection.h"
#include "Wire/Options.h"
#include "Wire/SocketTransport.h"
#include "Wire/TcpListener.h"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <sys/resource.h>

using namespace SampleServer;

namespace {

constexpr int UsageStatus = 2;
constexpr const char *DefaultPassword = "Sample-1";

ServerSettings settingsFrom(const Options &options)
{
    ServerSettings settings;
    Server::Options serverOptions;
    serverOptions.edition = options.edition;
    serverOptions.tables = options.tables;
    serverOptions.versionBanner = options.versionBanner;
    settings.server = std::make_shared<Server>(serverOptions);
    settings.user = options.user;
    const char *password = std::getenv(options.passwordVariable.c_str());
    settings.password = password ? password : DefaultPassword;
    settings.highestVersion = options.highestVersion;
    settings.programVersion = versionInBanner(settings.server->options().versionBanner);
    settings.tls = options.tls;
    if (options.tls != TlsPolicy::Off)
        settings.certificate.emplace(options.certificateFile, options.keyFile);
    return settings;
}

std::string hostName()
{
    char name[256] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? name : "localhost";
}

/// Every connection needs a descriptor: raise the limit to the maximum allowed.
void raiseDescriptorLimit()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

void serveUntilStopped(const Options &options)
{
    // Blocked before the first thread starts, so that only sigwait() receives them.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGTERM);
    sigaddset(&stopSignals, SIGINT);
    ::pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    raiseDescriptorLimit();

    const ServerSettings settings = settingsFrom(options);
    const TcpListener listener(options.bindAddress, options.port, [&](int socket, std::uint64_t) {
        SocketTransport transport(socket);
        Connection(transport, settings).run();
    });
    std::optional<BrowserResponder> browser;
    if (options.browserPort) {
        browser.emplace(
            options.bindAddress, *options.browserPort,
            BrowserInstance{hostName(), options.instance, settings.programVersion, listener.port()});
        std::cout << "Browser on " << options.bindAddress << ':' << browser->port() << '\n';
    }
    std::cout << "Listening on " << options.bindAddress << ':' << listener.port() << std::endl;

    int signal = 0;
    ::sigwait(&stopSignals, &signal);
}

} // namespace

int main(int argc, char **argv)
{
    try {
        const Options options = parseOptions({argv + 1, static_cast<std::size_t>(argc - 1)});
        if (options.help) {
            std::cout << usageText();
            return EXIT_SUCCESS;
        }
        serveUntilStopped(options);
        return EXIT_SUCCESS;
    } catch (const UsageError &error) {
        std::cerr << error.what() << '\n' << usageText();
        return UsageStatus;
    } catch (const std::exception &error) {
        std::cerr << "vantor-sample-server: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
