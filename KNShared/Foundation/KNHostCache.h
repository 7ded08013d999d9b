#pragma once

#include "KNSharedExport.h"

#include <QHash>
#include <QString>

#include <chrono>
#include <functional>
#include <mutex>

/// Names of hosts and their addresses, remembered for a while. Thread-safe; a look-up blocks its caller only.
class KNSHARED_EXPORT KNHostCache
{
public:
    /// Returns the address of a name, or a null QString when there is none.
    using Resolver = std::function<QString(const QString &host)>;

    static KNHostCache *sharedInstance();

    explicit KNHostCache(Resolver resolver = systemResolver,
                         std::chrono::seconds lifetime = std::chrono::minutes(5));

    /// The numeric IPv4 or IPv6 address of `host`, IPv4 preferred; `host` itself when it is an address
    /// already or cannot be resolved (failures are not remembered).
    QString cachedIPAddressForHost(const QString &host);
    void clear();

    /// Asks the system's resolver.
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
