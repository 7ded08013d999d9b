#include "Implementations/MSSQLBrowserServiceClient.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNNotificationCenter.h"

#include <QStringDecoder>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace {

constexpr char BroadcastRequest = 0x02;
constexpr char ServerResponse = 0x05;
constexpr qsizetype HeaderSize = 3;
constexpr qsizetype LongestAnswers = 4 * 1024 * 1024; ///< bytes; bounds a flood of answers

/// The state of the process-wide search.
struct State
{
    std::atomic<bool> enabled = false;
    std::atomic<bool> isSearching = false;
    std::mutex mutex;
    std::condition_variable stopped;            ///< wakes the pause
    MSSQLBrowserServiceClient::Entries entries; ///< guarded by mutex
    MSSQLBrowserServiceClient::Search search;   ///< guarded by mutex
};

State &state()
{
    // Never destroyed: a search may still run while the program ends.
    static auto *const instance = new State;
    return *instance;
}

void log(const char *message)
{
    KNLogHelper::sharedInstance()->logMessage(QString::fromLatin1(message));
}

/// Closes a socket at the end of its scope.
class Socket
{
public:
    Socket()
        : m_descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP))
    {
    }
    ~Socket()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;

    int descriptor() const { return m_descriptor; }
    template <typename Value>
    bool set(int option, const Value &value) const
    {
        return setsockopt(m_descriptor, SOL_SOCKET, option, &value, sizeof value) == 0;
    }

private:
    const int m_descriptor;
};

/// False if the request could not be sent.
bool ask(const Socket &socket, const MSSQLBrowserServiceClient::Search &search)
{
    if (socket.descriptor() < 0) {
        log("MSSQLBrowserServiceClient failed to initialize socket.");
        return false;
    }
    if (!socket.set(SO_BROADCAST, 1)) {
        log("MSSQLBrowserServiceClient failed to set broadcast option.");
        return false;
    }
    const auto microseconds = std::chrono::microseconds(search.timeout).count();
    const timeval timeout = {microseconds / 1000000, microseconds % 1000000};
    if (!socket.set(SO_SNDTIMEO, timeout)) {
        log("MSSQLBrowserServiceClient failed to set send timeout.");
        return false;
    }
    if (!socket.set(SO_RCVTIMEO, timeout)) {
        log("MSSQLBrowserServiceClient failed to set receive timeout.");
        return false;
    }
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(search.port);
    if (inet_pton(AF_INET, search.address.toLatin1().constData(), &address.sin_addr) != 1 ||
        sendto(socket.descriptor(), &BroadcastRequest, 1, 0, reinterpret_cast<const sockaddr *>(&address),
               sizeof address) != 1) {
        log("MSSQLBrowserServiceClient failed to browse for servers.");
        return false;
    }
    return true;
}

/// Everything that arrives until the socket's time-out, the deadline of the pass or the end of the search.
QByteArray receivedBytes(int socket)
{
    State &all = state();
    const bool belongsToSearch = all.enabled;
    std::chrono::milliseconds longestPass;
    {
        const std::lock_guard lock(all.mutex);
        longestPass = all.search.longestPass;
    }
    const auto deadline = std::chrono::steady_clock::now() + longestPass;
    QByteArray data;
    char buffer[512] = {};
    for (ssize_t size = 0; data.size() < LongestAnswers && std::chrono::steady_clock::now() < deadline &&
                           (all.enabled || !belongsToSearch) &&
                           (size = recv(socket, buffer, sizeof buffer - 1, 0)) >= 0;)
        data.append(buffer, size);
    return data;
}

/// Undecodable text is null.
QString decoded(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    return decoder.hasError() ? QString() : text;
}

/// The number that a text begins with; 0 without one or if it does not fit.
int leadingNumber(const QString &text)
{
    qsizetype length = text.startsWith(QLatin1Char('-')) ? 1 : 0;
    while (length < text.size() && text[length] >= QLatin1Char('0') && text[length] <= QLatin1Char('9'))
        ++length;
    return text.left(length).toInt();
}

} // namespace

const QString MSSQLBrowserServiceClient::MSSQLBrowserServiceClientUpdatedNotification =
    QStringLiteral("MSSQLBrowserServiceClientUpdatedNotification");
const QString MSSQLBrowserServiceClient::MSSQLBrowserServiceClientStartedSearchingNotification =
    QStringLiteral("MSSQLBrowserServiceClientStartedSearchingNotification");

void MSSQLBrowserServiceClient::setSearch(const Search &search)
{
    const std::lock_guard lock(state().mutex);
    state().search = search;
}

MSSQLBrowserServiceClient::Entries MSSQLBrowserServiceClient::allDatabases()
{
    const std::lock_guard lock(state().mutex);
    return state().entries;
}

bool MSSQLBrowserServiceClient::IsSearching()
{
    return state().isSearching;
}

void MSSQLBrowserServiceClient::beginBrowseForServers()
{
    state().enabled = true;
    KNDispatch::globalQueue([] {
        State &all = state();
        while (all.enabled) {
            all.isSearching = true;
            doBrowseForServers();
            all.isSearching = false;
            std::unique_lock lock(all.mutex);
            all.stopped.wait_for(lock, all.search.pause, [&] { return !all.enabled; });
        }
    });
}

void MSSQLBrowserServiceClient::stopBrowseForServers()
{
    const std::lock_guard lock(state().mutex);
    state().enabled = false;
    state().stopped.notify_all();
}

void MSSQLBrowserServiceClient::doBrowseForServers()
{
    KNNotificationCenter::defaultCenter()->post(MSSQLBrowserServiceClientStartedSearchingNotification);
    Search search;
    {
        const std::lock_guard lock(state().mutex);
        search = state().search;
    }
    const Socket socket;
    if (!ask(socket, search))
        return;
    const QString text = reciveBroadcastRespondFromSocket(socket.descriptor(), search.port);
    const QDateTime lastSeen = QDateTime::currentDateTimeUtc();
    if (text.isEmpty())
        return;
    const Entries entries = entriesInText(text, lastSeen);
    {
        const std::lock_guard lock(state().mutex);
        state().entries = entries;
    }
    KNNotificationCenter::defaultCenter()->post(MSSQLBrowserServiceClientUpdatedNotification);
}

QString MSSQLBrowserServiceClient::reciveBroadcastRespondFromSocket(int socket, quint16)
{
    const QByteArray data = receivedBytes(socket);
    if (data.size() <= HeaderSize)
        return QString();

    QString text;
    for (qsizetype index = 0; index < data.size();) {
        // After an invalid answer the start of the next one is unknown. The pass finds nothing then, as if no
        // server had answered.
        if (data.at(index) != ServerResponse) {
            log("The answers of the SQL Server Browsers hold something that is none.");
            return QString();
        }
        const bool hasLength = index + HeaderSize <= data.size();
        const qsizetype length = hasLength ? static_cast<unsigned char>(data.at(index + 1)) |
                                                 static_cast<unsigned char>(data.at(index + 2)) << 8
                                           : 0;
        if (index + HeaderSize + length > data.size()) {
            log("Did not received entire message.");
            break;
        }
        // Always the text of the first answer, in the length of this one.
        text += decoded(QByteArrayView(data).sliced(HeaderSize, length));
        index += HeaderSize + length;
    }
    return text;
}

MSSQLBrowserServiceClient::Entries MSSQLBrowserServiceClient::entriesInText(const QString &text,
                                                                            const QDateTime &lastSeen)
{
    Entries entries;
    const QStringList elements = text.split(QLatin1Char(';'));
    for (qsizetype i = 0; i + 1 < elements.size(); i += 2) {
        const QString &key = elements.at(i);
        const QString &value = elements.at(i + 1);
        // An empty element ends the record of a server.
        if (i + 2 < elements.size() && elements.at(i + 2).isEmpty())
            ++i;
        const auto is = [&](const char *name) {
            return key.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
        };
        if (is("ServerName")) {
            MSSQLBrowserServiceClientEntry entry;
            entry.host = value;
            entry.lastSeen = lastSeen;
            entries.append(entry);
        } else if (is("InstanceName")) {
            if (!entries.isEmpty())
                entries.last().instance = value;
        } else if (is("Version")) {
            if (!entries.isEmpty())
                entries.last().version = value;
        } else if (is("tcp")) {
            if (!entries.isEmpty())
                entries.last().port = leadingNumber(value);
        } else if (!is("IsClustered")) {
            KNLogHelper::sharedInstance()->logMessage("Unknown key (%@) with value (%@).", key, value);
        }
    }
    return entries;
}
