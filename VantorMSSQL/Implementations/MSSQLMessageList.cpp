#include "Implementations/MSSQLMessageList.h"

#include "Foundation/KNFormat.h"

#include <utility>

namespace {

/// The generic failure of a login, which follows the server's own messages.
constexpr qint32 ConnectionFailed = 20002;

thread_local bool threadLacksMemory = false;

qsizetype bytesOf(const DatabaseMessage &message)
{
    return static_cast<qsizetype>(sizeof(QChar)) *
           (message.msgtext.size() + message.srvname.size() + message.procname.size());
}

} // namespace

MSSQLMessageList &MSSQLMessageList::sharedInstance()
{
    static MSSQLMessageList list;
    return list;
}

void MSSQLMessageList::addMessage(const DatabaseMessage &message)
{
    const std::lock_guard lock(m_mutex);
    Batch &batch = m_batches[std::this_thread::get_id()];
    if (message.msgno == ConnectionFailed && !batch.messages.isEmpty())
        return;
    batch.newestNumber = message.msgno;
    const qsizetype bytes = bytesOf(message);
    if (batch.keptMessages >= MostMessages || batch.keptBytes + bytes > MostBytes) {
        if (batch.dropped++ == 0 || message.severity > batch.worstDropped.severity)
            batch.worstDropped = message;
        return;
    }
    ++batch.keptMessages;
    batch.keptBytes += bytes;
    batch.messages.append(message);
}

void MSSQLMessageList::clearMessage()
{
    threadLacksMemory = false;
    const std::lock_guard lock(m_mutex);
    m_batches.erase(std::this_thread::get_id());
}

QList<DatabaseMessage> MSSQLMessageList::messages() const
{
    const std::lock_guard lock(m_mutex);
    const auto batch = m_batches.find(std::this_thread::get_id());
    return batch == m_batches.end() ? QList<DatabaseMessage>() : batch->second.messages;
}

bool MSSQLMessageList::isEmpty() const
{
    const std::lock_guard lock(m_mutex);
    const auto batch = m_batches.find(std::this_thread::get_id());
    return batch == m_batches.end() || batch->second.messages.isEmpty();
}

qint32 MSSQLMessageList::newestNumber() const
{
    const std::lock_guard lock(m_mutex);
    const auto batch = m_batches.find(std::this_thread::get_id());
    return batch == m_batches.end() ? 0 : batch->second.newestNumber;
}

QList<DatabaseMessage> MSSQLMessageList::takeMessages()
{
    const std::lock_guard lock(m_mutex);
    const auto batch = m_batches.find(std::this_thread::get_id());
    return batch == m_batches.end() ? QList<DatabaseMessage>() : std::exchange(batch->second.messages, {});
}

QList<DatabaseMessage> MSSQLMessageList::takeLastMessages()
{
    const std::lock_guard lock(m_mutex);
    const auto node = m_batches.extract(std::this_thread::get_id());
    if (node.empty())
        return {};
    Batch &batch = node.mapped();
    if (batch.dropped > 0) {
        DatabaseMessage note = batch.worstDropped;
        note.msgtext = KNFormat("%ld more messages were not kept. The most severe of them: %@", batch.dropped,
                                batch.worstDropped.msgtext);
        batch.messages.append(note);
    }
    return batch.messages;
}

void MSSQLMessageList::noteLackOfMemory() noexcept
{
    threadLacksMemory = true;
}

bool MSSQLMessageList::lacksMemory() noexcept
{
    return threadLacksMemory;
}
