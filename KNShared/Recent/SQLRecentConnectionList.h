#pragma once

#include "Foundation/KNKeyValueStore.h"
#include "Recent/SQLRecentConnection.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QSet>

/// The remembered connections of one server kind, stored in the program's KNKeyValueStore under one key as a
/// JSON array in base64. The list is read once, in the background, and written after every change. If the
/// store fails, the list in memory is kept, and stored data that could not be read is never overwritten.
/// Writes change the program's own entries only, and take over what other programs have stored. On the main
/// thread.
class KNSHARED_EXPORT SQLRecentConnectionList
{
public:
    /// Creates an empty entry.
    using MakeEntry = std::function<SQLRecentConnectionPtr()>;
    /// Posted when the list or the known state of its store has changed.
    static const QString ChangedNotificationName;

    SQLRecentConnectionList(const QString &key, MakeEntry makeEntry);
    ~SQLRecentConnectionList();
    SQLRecentConnectionList(const SQLRecentConnectionList &) = delete;
    SQLRecentConnectionList &operator=(const SQLRecentConnectionList &) = delete;

    /// Starts reading the list. Call once.
    void load();

    /// The connections, most recent first.
    QList<SQLRecentConnectionPtr> connections() const;
    bool contains(const SQLRecentConnectionPtr &entry) const { return m_connections.contains(entry); }
    SQLRecentConnectionPtr makeEntry() const { return m_makeEntry(); }
    /// Records a connect made now: in the entry with the same identity (compared case-insensitively), or as a
    /// new entry.
    void update(const SQLRecentConnectionPtr &entry);
    /// Removes an entry, which must be in the list.
    void remove(const SQLRecentConnectionPtr &entry);
    /// Removes all entries and records no more until the program restarts.
    void removeAll();
    /// Whether removeAll() has ended the list: changes have no effect any more.
    bool isDropped() const { return m_state == State::Dropped; }

    /// Whether the store has not answered yet.
    bool isLoading() const { return m_state == State::Loading; }
    /// The store's error; not set if there is none.
    const KNError &problem() const { return m_problem; }
    /// The store's kind and location, as KNKeyValueStore::name() returns it.
    QString storeName() const { return m_store->name(); }
    bool isStoreEncrypted() const { return m_store->isEncrypted(); }
    /// Retries a failed read or write.
    void tryAgain();

private:
    enum class State { Loading, NotRead, Loaded, Dropped };

    void finishLoading(const QString &text, const KNError &error);
    SQLRecentConnectionPtr entryOf(const QJsonObject &stored) const;
    void save();
    void writeAll();
    void write();
    void finishWriting(const KNError &error);
    void takeOver(const QJsonArray &stored, const QSet<QString> &written);
    void notify() const;

    const QString m_key;
    const MakeEntry m_makeEntry;
    const std::shared_ptr<KNKeyValueStore> m_store;
    QList<SQLRecentConnectionPtr> m_connections;
    State m_state = State::Loading;
    KNError m_problem;
    bool m_isWriting = false;
    bool m_hasUnsavedChanges = false;
    QMap<QString, QJsonObject> m_stored; ///< as read or written last, by id
    QSet<QString> m_changed;             ///< ids of the entries to write
    QSet<QString> m_removed;             ///< ids of the entries to remove from the store
    const std::shared_ptr<int> m_life = std::make_shared<int>(); ///< callbacks check whether it still exists
};
