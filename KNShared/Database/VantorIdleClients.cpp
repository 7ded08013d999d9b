#include "Database/VantorIdleClients.h"

#include <algorithm>

VantorIdleClients::Entry VantorIdleClients::take(const VantorDBC &details)
{
    const auto found = std::find_if(m_entries.rbegin(), m_entries.rend(), [&](const Entry &entry) {
        return entry.details->opensSameSession(details);
    });
    if (found == m_entries.rend())
        return {};
    Entry entry = std::move(*found);
    m_entries.erase(std::next(found).base());
    return entry;
}

std::vector<VantorIdleClients::Entry> VantorIdleClients::takeAll(const VantorDBC &details)
{
    return takeIf([&](const Entry &entry) { return entry.details->opensSameSession(details); });
}

std::vector<VantorIdleClients::Entry> VantorIdleClients::takeExpired(Clock::time_point since)
{
    return takeIf([&](const Entry &entry) { return entry.since <= since; });
}

std::vector<VantorIdleClients::Entry> VantorIdleClients::takeSurplus(std::size_t maximumPerConnection,
                                                                     std::size_t maximum)
{
    auto surplus = takeIf([&](const Entry &entry) {
        // Entries behind this one were used later.
        const auto later = std::count_if(m_entries.begin(), m_entries.end(), [&](const Entry &other) {
            return &other > &entry && other.details->opensSameSession(*entry.details);
        });
        return static_cast<std::size_t>(later) >= maximumPerConnection;
    });
    while (m_entries.size() > maximum) {
        surplus.push_back(std::move(m_entries.front()));
        m_entries.erase(m_entries.begin());
    }
    return surplus;
}

VantorIdleClients::Clock::time_point VantorIdleClients::oldest() const
{
    return m_entries.empty() ? Clock::time_point::max() : m_entries.front().since;
}

template <typename Predicate>
std::vector<VantorIdleClients::Entry> VantorIdleClients::takeIf(Predicate predicate)
{
    std::vector<Entry> taken;
    for (Entry &entry : m_entries) {
        if (predicate(entry))
            taken.push_back(std::move(entry));
    }
    std::erase_if(m_entries, [](const Entry &entry) { return !entry.client; });
    return taken;
}
