#include "Foundation/KNDispatch.h"

#include "Foundation/KNGlobalQueue.h"
#include "Foundation/KNMainQueue.h"
#include "Foundation/KNSemaphore.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <exception>

namespace {

// Both are never destroyed: pool threads may outlive main().
KNGlobalQueue &globalQueueInstance()
{
    static auto *const queue = new KNGlobalQueue;
    return *queue;
}

KNMainQueue &mainQueueInstance()
{
    static auto *const queue = new KNMainQueue;
    return *queue;
}

/// Called on the thread of each new QCoreApplication during its construction: its event loop serves the queue
/// from then on.
void serveMainQueue()
{
    KNMainQueue &queue = mainQueueInstance();
    queue.claimMainThread();
    auto *const notifier =
        new QSocketNotifier(queue.wakeUpDescriptor(), QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                     [&queue] { queue.runOneAfterWakeUp(); });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(serveMainQueue)

namespace KNDispatch {

void globalQueue(std::function<void()> work)
{
    globalQueueInstance().add(std::move(work));
}

void mainQueue(std::function<void()> work)
{
    mainQueueInstance().add(std::move(work));
}

void mainQueueSync(const std::function<void()> &work)
{
    if (isMainThread()) {
        work();
        return;
    }
    std::exception_ptr failure;
    KNSemaphore done(QStringLiteral("com.quorvex.vantor.mainQueueSync"), 0);
    mainQueue([&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
        // Signal last, when this thread no longer holds a reference to the exception.
        done.signal();
    });
    done.wait();
    if (failure)
        std::rethrow_exception(failure);
}

bool isMainThread()
{
    return mainQueueInstance().isMainThread();
}

bool pumpMainQueue(int timeoutMilliseconds)
{
    mainQueueInstance().claimMainThread();
    return mainQueueInstance().pump(timeoutMilliseconds);
}

bool waitUntilIdle(int timeoutMilliseconds)
{
    return globalQueueInstance().waitUntilIdle(timeoutMilliseconds);
}

} // namespace KNDispatch
