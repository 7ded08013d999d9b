#include "Foundation/KNHostCache.h"

#include <QHostAddress>
#include <QUrl>

#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <memory>

namespace {

using AddressList = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

QString numericAddress(const addrinfo &address)
{
    char text[NI_MAXHOST];
    if (getnameinfo(address.ai_addr, address.ai_addrlen, text, sizeof text, nullptr, 0, NI_NUMERICHOST) != 0)
        return {};
    return QString::fromLatin1(text);
}

bool isASCII(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) { return character.unicode() < 0x80; });
}

} // namespace

KNHostCache *KNHostCache::sharedInstance()
{
    // Never destroyed: tasks of the global queue may still resolve names while the program ends.
    static auto *const cache = new KNHostCache;
    return cache;
}

KNHostCache::KNHostCache(Resolver resolver, std::chrono::seconds lifetime)
    : m_resolver(std::move(resolver))
    , m_lifetime(lifetime)
{
}

QString KNHostCache::cachedIPAddressForHost(const QString &host)
{
    if (host.isEmpty() || !QHostAddress(host).isNull())
        return host;

    const QString key = host.toLower();
    {
        const std::lock_guard lock(m_mutex);
        const auto entry = m_entries.constFind(key);
        if (entry != m_entries.cend() && std::chrono::steady_clock::now() < entry->expires)
            return entry->address;
    }

    QString address = m_resolver(host);
    if (address.isEmpty())
        return host;
    const std::lock_guard lock(m_mutex);
    m_entries.insert(key, {address, std::chrono::steady_clock::now() + m_lifetime});
    return address;
}

void KNHostCache::clear()
{
    const std::lock_guard lock(m_mutex);
    m_entries.clear();
}

QString KNHostCache::systemResolver(const QString &host)
{
    // ASCII names are not encoded: the IDNA rules reject some that local networks use.
    const QByteArray name = isASCII(host) ? host.toLatin1() : QUrl::toAce(host);
    if (name.isEmpty())
        return {};

    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(name.constData(), nullptr, &hints, &found) != 0)
        return {};
    const AddressList addresses(found, &freeaddrinfo);

    const addrinfo *chosen = nullptr;
    for (const addrinfo *address = addresses.get(); address != nullptr; address = address->ai_next) {
        if (chosen == nullptr || (address->ai_family == AF_INET && chosen->ai_family != AF_INET))
            chosen = address;
    }
    return chosen != nullptr ? numericAddress(*chosen) : QString();
}
