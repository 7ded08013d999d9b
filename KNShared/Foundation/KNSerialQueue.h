#pragma once

#include "KNSharedExport.h"

#include <functional>
#include <memory>

/// Runs work on the global queue in order, one item at a time. Any thread. Added work runs to its end even
/// after the queue is destroyed.
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
