#pragma once

#include "KNSharedExport.h"

#include <functional>
#include <memory>

/// Work of the global queue that runs in order, one piece after the other. Any thread. What was added runs to
/// its end, also when the queue is gone.
class KNSHARED_EXPORT KNSerialQueue
{
public:
    KNSerialQueue();
    ~KNSerialQueue();
    KNSerialQueue(const KNSerialQueue &) = delete;
    KNSerialQueue &operator=(const KNSerialQueue &) = delete;

    void add(std::function<void()> work);

private:
    struct Private;
    const std::shared_ptr<Private> d; ///< shared with the work
};
