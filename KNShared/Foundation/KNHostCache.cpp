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

bool isAddress(const QString &host)
{
    return host.isEmpty() || !QHostAddress(host).isNull();
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
    return cachedIPAddressesForHost(host).constFirst();
}

QStringList KNHostCache::cachedIPAddressesForHost(const QString &host)
{
    if (isAddress(host))
        return {host};

    const QString key = host.toLower();
    {
        const std::lock_guard lock(m_mutex);
        const auto entry = m_entries.constFind(key);
        if (entry != m_entries.cend() && std::chrono::steady_clock::now() < entry->expires)
            return entry->addresses;
    }

    const QStringList addresses = m_resolver(host);
    if (addresses.isEmpty())
        return {host};
    const std::lock_guard lock(m_mutex);
    m_entries.insert(key, {addresses, std::chrono::steady_clock::now() + m_lifetime});
    return addresses;
}

void KNHostCache::prefer(const QString &host, const QString &address)
{
    if (isAddress(host))
        return;
    const std::lock_guard lock(m_mutex);
    Entry &entry = m_entries[host.toLower()];
    if (entry.addresses.isEmpty())
        entry.expires = std::chrono::steady_clock::now() + m_lifetime;
    entry.addresses.removeAll(address);
    entry.addresses.prepend(address);
}

void KNHostCache::forget(const QString &host)
{
    const std::lock_guard lock(m_mutex);
    m_entries.remove(host.toLower());
}

void KNHostCache::clear()
{
    const std::lock_guard lock(m_mutex);
    m_entries.clear();
}

QStringList KNHostCache::systemResolver(const QString &host)
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

    QStringList numeric;
    for (const bool isIPv4 : {true, false}) {
        for (const addrinfo *address = addresses.get(); address != nullptr; address = address->ai_next) {
            if ((address->ai_family == AF_INET) == isIPv4)
                numeric.append(numericAddress(*address));
        }
    }
    numeric.removeAll(QString());
    numeric.removeDuplicates();
    return numeric;
}
