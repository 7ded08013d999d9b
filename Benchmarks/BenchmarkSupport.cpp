#include "BenchmarkSupport.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

#include <unistd.h>

std::uint16_t benchmarkPort()
{
    const char *port = std::getenv("VANTOR_BENCHMARK_PORT");
    return port ? static_cast<std::uint16_t>(std::atoi(port)) : SampleServerFixture::shared().port();
}

std::shared_ptr<MSSQLDatabaseConnectionDetails> settingsFor(std::uint16_t port)
{
    auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
    details->setHost(KNFormat("127.0.0.1,%d", port));
    details->setUsername(QString::fromLatin1(SampleServerFixture::User));
    details->setPassword(QString::fromLatin1(SampleServerFixture::Password));
    return details;
}

std::unique_ptr<MSSQLClient> connectedClient()
{
    auto client = std::make_unique<MSSQLClient>(settingsFor(benchmarkPort()));
    KNError error;
    if (!client->connect(&error)) {
        std::fprintf(stderr, "%s\n", error.localizedDescription().toUtf8().constData());
        std::exit(1);
    }
    return client;
}

double residentBytes()
{
    std::ifstream file("/proc/self/statm");
    double total = 0;
    double resident = 0;
    file >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double processorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double wallSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void keepLogsOutOfTheWay()
{
    const std::string folder = "/tmp/vantor-benchmark-" + std::to_string(getpid());
    setenv("XDG_STATE_HOME", folder.c_str(), 1);
}
