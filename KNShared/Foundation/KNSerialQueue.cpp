#include "Foundation/KNSerialQueue.h"

#include "Foundation/KNDispatch.h"

#include <deque>
#include <mutex>

struct KNSerialQueue::Private
{
    void workOff()
    {
        for (bool isLast = false; !isLast;) {
            std::unique_lock lock(mutex);
            const std::function<void()> work = queued.front();
            lock.unlock();
            work();
            lock.lock();
            queued.pop_front();
            isLast = queued.empty();
        }
    }

    std::mutex mutex;
    std::deque<std::function<void()>> queued; ///< guarded by mutex; the first one is running
};

KNSerialQueue::KNSerialQueue()
    : d(std::make_shared<Private>())
{
}

KNSerialQueue::~KNSerialQueue() = default;

void KNSerialQueue::add(std::function<void()> work)
{
    const std::lock_guard lock(d->mutex);
    d->queued.push_back(std::move(work));
    if (d->queued.size() == 1)
        KNDispatch::globalQueue([queue = d] { queue->workOff(); });
}
