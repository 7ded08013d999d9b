#pragma once

#include "KNSharedExport.h"

#include <functional>

/// Runs work on a global background queue, whose tasks may block, or on the main queue.
namespace KNDispatch {

/// Runs `work` on a pool thread. Blocked tasks do not delay others: the pool adds threads as needed and ends
/// idle ones after some seconds. Exceptions thrown by `work` are logged.
KNSHARED_EXPORT void globalQueue(std::function<void()> work);

/// Runs `work` on the main thread (that of QCoreApplication, or the one that calls pumpMainQueue()), in order
/// of submission.
KNSHARED_EXPORT void mainQueue(std::function<void()> work);
/// Runs `work` on the main thread and waits until it has finished; runs it directly if called there. Rethrows
/// exceptions of `work`. Blocks as long as no main thread serves the queue.
KNSHARED_EXPORT void mainQueueSync(const std::function<void()> &work);

/// Whether this is the main thread.
KNSHARED_EXPORT bool isMainThread();
/// For programs without an event loop: makes the caller the main thread and runs queued work, waiting up to
/// `timeoutMilliseconds` for the first item; true if something ran.
KNSHARED_EXPORT bool pumpMainQueue(int timeoutMilliseconds);

/// Waits until no task of the global queue is running or queued; false after `timeoutMilliseconds`.
KNSHARED_EXPORT bool waitUntilIdle(int timeoutMilliseconds);

} // namespace KNDispatch
