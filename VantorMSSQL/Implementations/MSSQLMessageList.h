#pragma once

#include "Database/DatabaseMessage.h"

#include <QList>

#include <deque>
#include <mutex>
#include <thread>

/// The one list of messages that all connections of the process fill. Each record remembers the thread that
/// collected it, and every operation concerns the records of the calling thread only: batches that run at
/// once on several threads never see each other's messages. Thread-safe.
class MSSQLMessageList
{
public:
    static MSSQLMessageList &sharedInstance();

    /// Appends a message. The generic failure 20002 is dropped when a more specific message is there already.
    void addMessage(const DatabaseMessage &message);
    /// Forgets this thread's messages.
    void clearMessage();
    /// This thread's messages in the order in which they came.
    QList<DatabaseMessage> messages() const;
    bool isEmpty() const;
    /// All of this thread's messages, which are then forgotten.
    QList<DatabaseMessage> takeMessages();

private:
    struct Record
    {
        std::thread::id thread;
        DatabaseMessage message;
    };

    mutable std::mutex m_mutex;
    std::deque<Record> m_records; ///< guarded by m_mutex
};
