#pragma once

#include "Database/VantorDatabaseClient.h"

#include <chrono>
#include <vector>

/// The connected clients that wait in a pool, each with the settings that it was lent for. Not synchronised.
class VantorIdleClients
{
public:
    using Clock = std::chrono::steady_clock;

    struct Entry
    {
        VantorDBCPtr details;
        std::unique_ptr<VantorDatabaseClient> client;
        Clock::time_point since;
    };

    std::size_t count() const { return m_entries.size(); }
    void add(Entry entry) { m_entries.push_back(std::move(entry)); }
    /// The one with these settings that was used last; without a client when there is none.
    Entry take(const VantorDBC &details);
    /// All with these settings.
    std::vector<Entry> takeAll(const VantorDBC &details);
    std::vector<Entry> takeAll() { return std::exchange(m_entries, {}); }
    /// What is idle since that time or longer.
    std::vector<Entry> takeExpired(Clock::time_point since);
    /// The oldest of those that are too many, for one connection and altogether.
    std::vector<Entry> takeSurplus(std::size_t maximumPerConnection, std::size_t maximum);
    /// Since when the oldest waits; the end of time when there is none.
    Clock::time_point oldest() const;

private:
    template <typename Predicate>
    std::vector<Entry> takeIf(Predicate predicate);

    std::vector<Entry> m_entries; ///< by time, the oldest first
};
