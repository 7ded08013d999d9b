#include "Implementations/MSSQLServerCheck.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNHostCache.h"
#include "Implementations/MSSQLLoginFile.h"

#include <QHash>

#include <mutex>

namespace MSSQLServerCheck {

namespace {

using Clock = MSSQLPreloginSocket::Clock;

constexpr std::chrono::minutes TrustTime(1);
constexpr qsizetype MostServers = 1000;

struct AnsweringServers
{
    std::mutex mutex;
    QHash<QString, Clock::time_point> answered; ///< by "host,port"; guarded by mutex
};

AnsweringServers &answeringServers()
{
    static auto *const servers =
        new AnsweringServers; // never destroyed: logins may run while the program ends
    return *servers;
}

QString keyOf(const MSSQLServerAddress &server)
{
    return KNFormat("%@,%d", server.host, server.port);
}

} // namespace

bool hasAnswered(const MSSQLServerAddress &server)
{
    const std::lock_guard lock(answeringServers().mutex);
    const auto found = answeringServers().answered.constFind(keyOf(server));
    return found != answeringServers().answered.constEnd() && Clock::now() - *found < TrustTime;
}

Answer ask(MSSQLServerAddress &server, Clock::time_point deadline, int cancelDescriptor, QString *reason)
{
    using State = MSSQLPreloginSocket::State;
    constexpr char EncryptLogin = 0;
    if (hasAnswered(server))
        return Answer::Given;
    MSSQLPreloginSocket socket(deadline, cancelDescriptor);
    const bool isConnected = socket.connect(server.name.isNull() ? server.host : server.name, server.port);
    if (isConnected && !server.name.isNull())
        server.host = KNHostCache::sharedInstance()->cachedIPAddressForHost(server.name);
    if (isConnected && socket.sendPacket(preloginAsking(EncryptLogin)) && !socket.readPacket().isEmpty()) {
        noteAnswer(server);
        return Answer::Given;
    }
    switch (socket.state()) {
    case State::Cancelled:
        return Answer::Cancelled;
    case State::TimedOut:
        *reason = QStringLiteral("The server did not answer in time.");
        return isConnected ? Answer::Silent : Answer::Unreachable;
    case State::Failed:
        *reason = socket.reason();
        return isConnected ? Answer::Uncertain : Answer::Unreachable;
    default:
        return Answer::Uncertain;
    }
}

void noteAnswer(const MSSQLServerAddress &server)
{
    const std::lock_guard lock(answeringServers().mutex);
    auto &answered = answeringServers().answered;
    if (answered.size() >= MostServers)
        answered.clear();
    answered.insert(keyOf(server), Clock::now());
}

void forget(const MSSQLServerAddress &server)
{
    KNHostCache::sharedInstance()->forget(server.name.isNull() ? server.host : server.name);
    const std::lock_guard lock(answeringServers().mutex);
    answeringServers().answered.remove(keyOf(server));
}

QByteArray preloginAsking(char encryption)
{
    // Each option: its number, and the offset and length of its content.
    constexpr char Version = 0;
    constexpr char Encryption = 1;
    constexpr char End = '\xFF';
    const char message[] = {Version, 0, 11, 0, 6, Encryption, 0, 17, 0, 1, End, 0, 0, 0, 0, 0, 0, encryption};
    return QByteArray(message, sizeof message);
}

} // namespace MSSQLServerCheck
