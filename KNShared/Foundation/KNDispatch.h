#pragma once

#include "KNSharedExport.h"

#include <functional>

/// Where work runs: a global background queue whose tasks may block, and the main queue.
namespace KNDispatch {

/// Runs `work` soon on a pool thread. A thread is added rather than let a waiting task hold up another; idle
/// threads end after some seconds. An exception that leaves `work` is logged.
KNSHARED_EXPORT void globalQueue(std::function<void()> work);

/// Runs `work` on the main thread (that of QCoreApplication, or the one that pumps the main queue), in order
/// of arrival.
KNSHARED_EXPORT void mainQueue(std::function<void()> work);
/// The same, and waits until it has run; on the main thread itself it runs at once.
/// An exception that leaves `work` is thrown here. Blocks for as long as no main thread serves the queue.
KNSHARED_EXPORT void mainQueueSync(const std::function<void()> &work);

/// Whether this is the main thread.
KNSHARED_EXPORT bool isMainThread();
/// For a program without an event loop: makes this the main thread and runs what is queued, waiting up to
/// `timeoutMilliseconds` for the first piece; true when something ran.
KNSHARED_EXPORT bool pumpMainQueue(int timeoutMilliseconds);

/// Waits until no task of the global queue is running or queued; false after `timeoutMilliseconds`.
KNSHARED_EXPORT bool waitUntilIdle(int timeoutMilliseconds);

} // namespace KNDispatch
