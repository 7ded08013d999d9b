#include "Engine/Storage/LockManager.h"

#include <algorithm>
#include <set>

namespace SampleServer {

namespace {

/// The time a waiting session sleeps between two checks for cancellation.
constexpr std::chrono::milliseconds AttentionInterval{10};

bool exclude(LockMode left, LockMode right)
{
    return left == LockMode::Exclusive || right == LockMode::Exclusive;
}

} // namespace

/// Whether another session holds a conflicting lock.
bool LockManager::isHeldAgainst(const Request &request, const Lock &lock) const
{
    const auto found = m_holders.find(lock.resource);
    if (found == m_holders.end())
        return false;
    return std::any_of(found->second.begin(), found->second.end(), [&](const auto &entry) {
        const LockMode held = entry.second.exclusive > 0 ? LockMode::Exclusive : LockMode::Shared;
        return entry.first != request.owner && exclude(held, lock.mode);
    });
}

bool LockManager::isBlocked(Requests::const_iterator request) const
{
    for (const Lock &lock : *request->locks)
        if (isHeldAgainst(*request, lock))
            return true;
    if (m_grants.contains(request->owner))
        return false;
    // Earlier requests have priority, unless they wait for another lock anyway.
    for (auto earlier = m_waiting.begin(); earlier != request; ++earlier)
        for (const Lock &theirs : *earlier->locks) {
            const bool competes =
                std::any_of(request->locks->begin(), request->locks->end(), [&](const Lock &lock) {
                    return lock.resource == theirs.resource && exclude(lock.mode, theirs.mode);
                });
            const bool waitsElsewhere =
                std::any_of(earlier->locks->begin(), earlier->locks->end(), [&](const Lock &other) {
                    return other.resource != theirs.resource && isHeldAgainst(*earlier, other);
                });
            if (competes && !waitsElsewhere)
                return true;
        }
    return false;
}

/// The sessions that a request waits for: those with conflicting locks. Earlier requests without the lock are
/// not included, because they do not depend on this one.
void LockManager::addBlockers(const Request &request, std::vector<int> &blockers) const
{
    for (const Lock &lock : *request.locks) {
        const auto found = m_holders.find(lock.resource);
        if (found == m_holders.end())
            continue;
        for (const auto &[owner, holder] : found->second)
            if (owner != request.owner &&
                exclude(holder.exclusive > 0 ? LockMode::Exclusive : LockMode::Shared, lock.mode))
                blockers.push_back(owner);
    }
}

/// Follows the wait graph; true if it leads back to the request's owner.
bool LockManager::wouldDeadlock(Requests::const_iterator request) const
{
    if (!m_grants.contains(request->owner))
        return false; // a session without locks cannot block others
    std::set<int> seen;
    std::vector<int> open;
    addBlockers(*request, open);
    while (!open.empty()) {
        const int owner = open.back();
        open.pop_back();
        if (owner == request->owner)
            return true;
        if (!seen.insert(owner).second)
            continue;
        const auto waits = std::find_if(m_waiting.begin(), m_waiting.end(),
                                        [owner](const Request &r) { return r.owner == owner; });
        if (waits != m_waiting.end())
            addBlockers(*waits, open);
    }
    return false;
}

void LockManager::grant(const Request &request)
{
    for (const Lock &lock : *request.locks) {
        Holder &holder = m_holders[lock.resource][request.owner];
        ++(lock.mode == LockMode::Exclusive ? holder.exclusive : holder.shared);
        ++m_grants[request.owner];
    }
}

/// Waits briefly, then polls for cancellation, without the mutex; may throw.
bool LockManager::waitOnce(std::unique_lock<std::mutex> &lock, const std::function<bool()> &interrupted)
{
    m_released.wait_for(lock, AttentionInterval);
    lock.unlock();
    struct Relock
    {
        std::unique_lock<std::mutex> &lock;
        ~Relock() { lock.lock(); }
    } const relock{lock};
    return interrupted();
}

LockOutcome LockManager::acquire(int owner, const std::vector<Lock> &locks,
                                 std::optional<std::chrono::milliseconds> timeout,
                                 const std::function<bool()> &interrupted)
{
    const auto start = std::chrono::steady_clock::now();
    std::unique_lock lock(m_mutex);
    struct Place // in the queue; left also after an exception
    {
        LockManager &manager;
        Requests::const_iterator request;
        ~Place()
        {
            manager.m_waiting.erase(request);
            manager.m_released.notify_all(); // later requests may be granted now
        }
    } const place{*this, m_waiting.insert(m_waiting.end(), Request{owner, &locks})};
    while (isBlocked(place.request)) {
        if (wouldDeadlock(place.request))
            return LockOutcome::Deadlock;
        if (timeout && std::chrono::steady_clock::now() - start >= *timeout)
            return LockOutcome::TimedOut;
        if (waitOnce(lock, interrupted))
            return LockOutcome::Interrupted;
    }
    grant(*place.request);
    return LockOutcome::Granted;
}

void LockManager::release(int owner, const std::vector<Lock> &locks)
{
    if (locks.empty())
        return;
    const std::lock_guard lock(m_mutex);
    for (const Lock &held : locks) {
        const auto resource = m_holders.find(held.resource);
        if (resource == m_holders.end() || !resource->second.contains(owner))
            continue;
        Holder &holder = resource->second[owner];
        --(held.mode == LockMode::Exclusive ? holder.exclusive : holder.shared);
        if (holder.exclusive <= 0 && holder.shared <= 0)
            resource->second.erase(owner);
        if (resource->second.empty())
            m_holders.erase(resource);
        if (--m_grants[owner] <= 0)
            m_grants.erase(owner);
    }
    m_released.notify_all();
}

} // namespace SampleServer
