#pragma once

#include "Foundation/KNKeyValueStore.h"
#include "Recent/SQLRecentConnection.h"

#include <QList>

/// The remembered connections of one kind of server, kept in the program's KNKeyValueStore under one key, as
/// a JSON array in base64. It is read once, in the background, and written behind every change: a
/// store that fails loses nothing of it in memory, and what it holds and could not be read is never written
/// over. On the main thread.
class KNSHARED_EXPORT SQLRecentConnectionList
{
public:
    /// Makes an entry without anything in it.
    using MakeEntry = std::function<SQLRecentConnectionPtr()>;
    /// Posted when the list, or what is known of its store, has changed.
    static const QString ChangedNotificationName;

    SQLRecentConnectionList(const QString &key, MakeEntry makeEntry);
    ~SQLRecentConnectionList();
    SQLRecentConnectionList(const SQLRecentConnectionList &) = delete;
    SQLRecentConnectionList &operator=(const SQLRecentConnectionList &) = delete;

    /// Begins to read. To be called once.
    void load();

    /// The latest first.
    QList<SQLRecentConnectionPtr> connections() const;
    bool contains(const SQLRecentConnectionPtr &entry) const { return m_connections.contains(entry); }
    SQLRecentConnectionPtr makeEntry() const { return m_makeEntry(); }
    /// Remembers a connect that is made now: in the entry with the same identity (in whatever letter case),
    /// or as a new entry.
    void update(const SQLRecentConnectionPtr &entry);
    /// The entry must be in the list.
    void remove(const SQLRecentConnectionPtr &entry);
    /// Forgets everything and keeps nothing more until the program starts again.
    void removeAll();

    /// Whether the store has not answered yet.
    bool isLoading() const { return m_state == State::Loading; }
    /// What the store could not do; no error when all is well.
    const KNError &problem() const { return m_problem; }
    /// What and where the store is, as KNKeyValueStore::name().
    QString storeName() const { return m_store->name(); }
    /// Reads or writes once more what could not be.
    void tryAgain();

private:
    enum class State { Loading, NotRead, Loaded, Dropped };

    void finishLoading(const QString &text, const KNError &error);
    void save();
    void write();
    void notify() const;

    const QString m_key;
    const MakeEntry m_makeEntry;
    const std::shared_ptr<KNKeyValueStore> m_store;
    QList<SQLRecentConnectionPtr> m_connections;
    State m_state = State::Loading;
    KNError m_problem;
    bool m_isWriting = false;
    bool m_hasUnsavedChanges = false;
    const std::shared_ptr<int> m_life = std::make_shared<int>(); ///< answers look whether it is still there
};
