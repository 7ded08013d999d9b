#include "Implementations/MSSQLMessageList.h"

#include <algorithm>

namespace {

/// The generic failure of a login, which follows whatever the server said about it.
constexpr qint32 ConnectionFailed = 20002;

} // namespace

MSSQLMessageList &MSSQLMessageList::sharedInstance()
{
    static MSSQLMessageList list;
    return list;
}

void MSSQLMessageList::addMessage(const DatabaseMessage &message)
{
    const auto thread = std::this_thread::get_id();
    const std::lock_guard lock(m_mutex);
    if (message.msgno == ConnectionFailed &&
        std::any_of(m_records.begin(), m_records.end(), [&](const Record &r) { return r.thread == thread; }))
        return;
    m_records.push_back({thread, message});
}

void MSSQLMessageList::clearMessage()
{
    const auto thread = std::this_thread::get_id();
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_records, [&](const Record &record) { return record.thread == thread; });
}

QList<DatabaseMessage> MSSQLMessageList::messages() const
{
    const auto thread = std::this_thread::get_id();
    QList<DatabaseMessage> own;
    const std::lock_guard lock(m_mutex);
    for (const Record &record : m_records) {
        if (record.thread == thread)
            own.append(record.message);
    }
    return own;
}

bool MSSQLMessageList::isEmpty() const
{
    const auto thread = std::this_thread::get_id();
    const std::lock_guard lock(m_mutex);
    return std::none_of(m_records.begin(), m_records.end(),
                        [&](const Record &r) { return r.thread == thread; });
}

QList<DatabaseMessage> MSSQLMessageList::takeMessages()
{
    const QList<DatabaseMessage> own = messages();
    clearMessage();
    return own;
}
