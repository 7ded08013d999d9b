// Logs in again and again: with the protocol version remembered, by probing a server that knows the newest
// version, and by probing one that knows the oldest only. A relay counts the round trips.

#include "BenchmarkSupport.h"
#include "Support/HostileServerRelay.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

/// Milliseconds of the median login.
double medianLogin(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details)
{
    std::vector<double> times;
    for (int round = 0; round < 51; ++round) {
        MSSQLClient client(details->copy());
        KNError error;
        const double begin = wallSeconds();
        if (!client.connect(&error)) {
            std::fprintf(stderr, "%s\n", error.localizedDescription().toUtf8().constData());
            std::exit(1);
        }
        times.push_back(wallSeconds() - begin);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2] * 1e3;
}

void report(const char *what, std::uint16_t port, bool remembered)
{
    const auto remember = [&](const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details) {
        if (remembered)
            details->setConnectedWithDetails({{QStringLiteral("TDS"), 8}, {QStringLiteral("NTLMv2"), false}});
        return details;
    };
    const double milliseconds = medianLogin(remember(settingsFor(port)));
    HostileServerRelay relay(port, HostileServerRelay::Fault::None, 0);
    MSSQLClient client(remember(settingsFor(relay.port())));
    KNError error;
    client.connect(&error);
    std::printf("login, %-28s%.2f ms, %d round trips\n", what, milliseconds,
                static_cast<int>(relay.roundTrips()));
}

} // namespace

int main()
{
    keepLogsOutOfTheWay();
    SampleServerFixture old({.arguments = {"--tds", "7.1"}});
    report("version remembered", benchmarkPort(), true);
    report("probing, TDS 7.4", benchmarkPort(), false);
    report("probing, TDS 7.1 only", old.port(), false);
    return 0;
}
