#pragma once

#include "Database/DatabaseMessage.h"

#include <QList>

#include <mutex>
#include <thread>
#include <unordered_map>

/// The one list of messages that all connections of the process fill. Each message belongs to the thread that
/// collected it, and every operation concerns the messages of the calling thread only: batches that run at
/// once on several threads never see each other's messages. Thread-safe.
///
/// A batch, from one clearMessage() to the next, keeps 10,000 messages or 16 MB of text; further ones are
/// counted.
class MSSQLMessageList
{
public:
    static constexpr qsizetype MostMessages = 10'000;
    static constexpr qsizetype MostBytes = 16 * 1024 * 1024;

    static MSSQLMessageList &sharedInstance();

    /// Appends a message. The generic failure 20002 is dropped when a more specific message is there already.
    void addMessage(const DatabaseMessage &message);
    /// Forgets this thread's messages and begins a new batch.
    void clearMessage();
    /// This thread's messages in the order in which they came.
    QList<DatabaseMessage> messages() const;
    bool isEmpty() const;
    /// The number of the batch's newest message, kept or not; 0 when there was none.
    qint32 newestNumber() const;
    /// Returns this thread's messages and forgets them; the batch goes on.
    QList<DatabaseMessage> takeMessages();
    /// As takeMessages(), at the end of the batch: a last message says how many were not kept, if any. It has
    /// the highest severity among them.
    QList<DatabaseMessage> takeLastMessages();

    /// Notes that a message of the calling thread was lost for lack of memory.
    static void noteLackOfMemory() noexcept;
    /// Whether that happened since the calling thread's last clearMessage().
    static bool lacksMemory() noexcept;

private:
    /// What one thread has collected since its batch began.
    struct Batch
    {
        QList<DatabaseMessage> messages;
        qsizetype keptMessages = 0; ///< including those that were taken
        qsizetype keptBytes = 0;
        qint64 dropped = 0;
        qint32 newestNumber = 0;
        DatabaseMessage worstDropped; ///< of those that were not kept, the one of the highest severity
    };

    mutable std::mutex m_mutex;
    std::unordered_map<std::thread::id, Batch> m_batches; ///< guarded by m_mutex
};
