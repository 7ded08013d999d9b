#pragma once

#include <chrono>
#include <compare>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace SampleServer {

enum class LockMode { Shared, Exclusive };

/// A lockable resource: a table by its object id, or a whole database in one of two roles.
struct LockResource
{
    static constexpr std::int64_t Schema = 0; ///< the definitions; shared by the sessions that use them
    static constexpr std::int64_t Writer =
        1; ///< the right to change rows: SQLite allows one writer per database

    int database = 0;
    std::int64_t object = Schema;

    friend auto operator<=>(const LockResource &, const LockResource &) = default;
};

struct Lock
{
    LockResource resource;
    LockMode mode = LockMode::Shared;

    friend bool operator==(const Lock &, const Lock &) = default;
};

enum class LockOutcome { Granted, TimedOut, Deadlock, Interrupted };

/// Locks between sessions, identified by their process ids. Thread-safe.
///
/// A statement requests all its locks at once and holds none of them while it waits, so two single statements
/// never block each other. Only transactions, which keep earlier locks, can close a cycle.
class LockManager
{
public:
    /// Waits until all locks can be granted, then grants them together. `interrupted` is polled every few
    /// milliseconds. Every grant must be released, even if the owner already had the lock. An owner without
    /// locks does not overtake earlier requests for the same lock; an owner with locks does. Deadlock:
    /// waiting would close a cycle of sessions that wait for each other.
    LockOutcome acquire(int owner, const std::vector<Lock> &locks,
                        std::optional<std::chrono::milliseconds> timeout,
                        const std::function<bool()> &interrupted);
    void release(int owner, const std::vector<Lock> &locks);

private:
    struct Holder
    {
        int shared = 0;
        int exclusive = 0;
    };
    struct Request
    {
        int owner;
        const std::vector<Lock> *locks;
    };
    using Requests = std::list<Request>;

    bool isHeldAgainst(const Request &request, const Lock &lock) const;
    bool isBlocked(Requests::const_iterator request) const;
    bool wouldDeadlock(Requests::const_iterator request) const;
    void addBlockers(const Request &request, std::vector<int> &blockers) const;
    void grant(const Request &request);
    bool waitOnce(std::unique_lock<std::mutex> &lock, const std::function<bool()> &interrupted);

    std::mutex m_mutex;
    std::condition_variable m_released;
    std::map<LockResource, std::map<int, Holder>> m_holders; ///< guarded by m_mutex; by owner
    std::map<int, int> m_grants; ///< guarded by m_mutex; number of grants per owner
    Requests m_waiting;          ///< guarded by m_mutex; in order of arrival
};

} // namespace SampleServer
