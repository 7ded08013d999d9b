#pragma once

#include "KNSharedExport.h"

#include <QHash>
#include <QString>

#include <chrono>
#include <functional>
#include <mutex>

/// Caches the addresses of host names for a limited time. Thread-safe; a look-up blocks only its caller.
class KNSHARED_EXPORT KNHostCache
{
public:
    /// Returns the address of a name, or a null QString if there is none.
    using Resolver = std::function<QString(const QString &host)>;

    static KNHostCache *sharedInstance();

    explicit KNHostCache(Resolver resolver = systemResolver,
                         std::chrono::seconds lifetime = std::chrono::minutes(5));

    /// Returns the numeric IPv4 or IPv6 address of `host`, preferably IPv4; returns `host` itself if it is an
    /// address or cannot be resolved. Failures are not cached.
    QString cachedIPAddressForHost(const QString &host);
    void clear();

    /// Resolves the name with the system's resolver.
    static QString systemResolver(const QString &host);

private:
    struct Entry
    {
        QString address;
        std::chrono::steady_clock::time_point expires;
    };

    const Resolver m_resolver;
    const std::chrono::seconds m_lifetime;
    std::mutex m_mutex;
    QHash<QString, Entry> m_entries; ///< guarded by m_mutex
};
