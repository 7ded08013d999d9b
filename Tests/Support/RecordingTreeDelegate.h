#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Foundation/KNDispatch.h"

#include <chrono>
#include <map>
#include <mutex>

/// Keeps what a tree tells of its loads. Any thread.
class RecordingTreeDelegate : public KNDatabaseTreeEntryDelegate
{
public:
    struct Event
    {
        const KNDatabaseTreeEntry *entry;
        bool isFinish;
        bool onMainThread;
    };

    void databaseTreeEntryDidBeginLoading(const std::shared_ptr<KNDatabaseTreeEntry> &entry) override
    {
        record({entry.get(), false, KNDispatch::isMainThread()});
    }
    void databaseTreeEntryDidFinishLoading(const std::shared_ptr<KNDatabaseTreeEntry> &entry) override
    {
        record({entry.get(), true, KNDispatch::isMainThread()});
    }

    void databaseTreeEntryDidFailLoading(const std::shared_ptr<KNDatabaseTreeEntry> &,
                                         const KNError &error) override
    {
        const std::lock_guard lock(m_mutex);
        m_failures.push_back(error);
    }

    /// The errors that the user was to see.
    std::vector<KNError> failures() const
    {
        const std::lock_guard lock(m_mutex);
        return m_failures;
    }
    std::vector<Event> events() const
    {
        const std::lock_guard lock(m_mutex);
        return m_events;
    }
    std::vector<Event> eventsOf(const KNDatabaseTreeEntry &entry) const
    {
        std::vector<Event> events;
        for (const Event &event : this->events()) {
            if (event.entry == &entry)
                events.push_back(event);
        }
        return events;
    }
    int begins(const KNDatabaseTreeEntry &entry) const { return count(entry, false); }
    int finishes(const KNDatabaseTreeEntry &entry) const { return count(entry, true); }

private:
    void record(const Event &event)
    {
        const std::lock_guard lock(m_mutex);
        m_events.push_back(event);
    }
    int count(const KNDatabaseTreeEntry &entry, bool isFinish) const
    {
        const auto events = eventsOf(entry);
        return static_cast<int>(std::count_if(
            events.begin(), events.end(), [&](const Event &event) { return event.isFinish == isFinish; }));
    }

    mutable std::mutex m_mutex;
    std::vector<Event> m_events;     ///< guarded by m_mutex
    std::vector<KNError> m_failures; ///< guarded by m_mutex
};
