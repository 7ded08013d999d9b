#pragma once

#include "Database/DatabaseMessage.h"

#include <QList>

#include <mutex>
#include <thread>
#include <unordered_map>

/// The list of messages that all connections of the process share. Each message belongs to the thread that
/// collected it, and every operation affects only the calling thread's messages: batches that run at once on
/// several threads never see each other's messages. Thread-safe.
/// || A batch, from one clearMessage() to the next, keeps 10,000 messages or 16 MB of text; further ones are
/// only counted.
class MSSQLMessageList
{
public:
    static constexpr qsizetype MostMessages = 10'000;
    static constexpr qsizetype MostBytes = 16 * 1024 * 1024;

    static MSSQLMessageList &sharedInstance();

    /// Appends a message. The generic failure 20002 is dropped if the list already has a more specific
    /// message.
    void addMessage(const DatabaseMessage &message);
    /// Removes this thread's messages and begins a new batch.
    void clearMessage();
    /// This thread's messages in order of arrival.
    QList<DatabaseMessage> messages() const;
    bool isEmpty() const;
    /// The number of the batch's newest message, kept or dropped; 0 if there was none.
    qint32 newestNumber() const;
    /// Returns this thread's messages and removes them; the batch continues.
    QList<DatabaseMessage> takeMessages();
    /// Same as takeMessages(), at the end of the batch: if messages were dropped, a last message with the
    /// highest severity among them reports their number.
    QList<DatabaseMessage> takeLastMessages();

    /// Records that a message of the calling thread was lost for lack of memory.
    static void noteLackOfMemory() noexcept;
    /// Whether noteLackOfMemory() was called since the calling thread's last clearMessage().
    static bool lacksMemory() noexcept;

private:
    /// The messages of one thread since its batch began.
    struct Batch
    {
        QList<DatabaseMessage> messages;
        qsizetype keptMessages = 0; ///< including those already taken
        qsizetype keptBytes = 0;
        qint64 dropped = 0;
        qint32 newestNumber = 0;
        DatabaseMessage worstDropped; ///< the dropped message of the highest severity
    };

    mutable std::mutex m_mutex;
    std::unordered_map<std::thread::id, Batch> m_batches; ///< guarded by m_mutex
};
