#pragma once

#include "Database/VantorDatabaseClient.h"

#include <chrono>
#include <vector>

/// The idle connected clients of a pool, each with the settings it was lent for. Not synchronised.
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
    /// Removes and returns the most recently used client with these settings; the entry's client is null if
    /// there is none.
    Entry take(const VantorDBC &details);
    /// Removes and returns all clients with these settings.
    std::vector<Entry> takeAll(const VantorDBC &details);
    std::vector<Entry> takeAll() { return std::exchange(m_entries, {}); }
    /// Removes and returns the clients idle since `since` or longer.
    std::vector<Entry> takeExpired(Clock::time_point since);
    /// Removes and returns the oldest clients beyond the limits per connection and in total.
    std::vector<Entry> takeSurplus(std::size_t maximumPerConnection, std::size_t maximum);
    /// When the oldest idle client was returned; time_point::max() if there is none.
    Clock::time_point oldest() const;

private:
    template <typename Predicate>
    std::vector<Entry> takeIf(Predicate predicate);

    std::vector<Entry> m_entries; ///< by time, the oldest first
};
