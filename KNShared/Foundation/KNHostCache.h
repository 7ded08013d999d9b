#pragma once

#include "KNSharedExport.h"

#include <QHash>
#include <QStringList>

#include <chrono>
#include <functional>
#include <mutex>

/// Caches the addresses of host names for a limited time. Thread-safe; a look-up blocks only its caller.
class KNSHARED_EXPORT KNHostCache
{
public:
    /// Returns the addresses of a name, the best one first; none if it cannot be resolved.
    using Resolver = std::function<QStringList(const QString &host)>;

    static KNHostCache *sharedInstance();

    explicit KNHostCache(Resolver resolver = systemResolver,
                         std::chrono::seconds lifetime = std::chrono::minutes(5));

    /// Returns the numeric IPv4 or IPv6 address of `host`, the one preferred last or else preferably IPv4;
    /// returns `host` itself if it is an address or cannot be resolved. Failures are not cached.
    QString cachedIPAddressForHost(const QString &host);
    /// Returns all addresses of `host`, beginning with cachedIPAddressForHost(). A name may stand for servers
    /// of which one answers, such as the listener of an availability group with an address in each subnet.
    QStringList cachedIPAddressesForHost(const QString &host);
    /// Puts the address first among those of `host`, because it answers. Does nothing for a host that is an
    /// address.
    void prefer(const QString &host, const QString &address);
    /// Lets the next look-up of `host` ask the resolver, because the address does not answer any more.
    void forget(const QString &host);
    void clear();

    /// Resolves the name with the system's resolver, IPv4 addresses first.
    static QStringList systemResolver(const QString &host);

private:
    struct Entry
    {
        QStringList addresses; ///< not empty
        std::chrono::steady_clock::time_point expires;
    };

    const Resolver m_resolver;
    const std::chrono::seconds m_lifetime;
    std::mutex m_mutex;
    QHash<QString, Entry> m_entries; ///< guarded by m_mutex
};
