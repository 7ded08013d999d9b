#include "Recent/SQLRecentConnectionList.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNNotificationCenter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

QString encoded(const QJsonArray &array)
{
    return QString::fromLatin1(QJsonDocument(array).toJson(QJsonDocument::Compact).toBase64());
}

QString encoded(const QList<SQLRecentConnectionPtr> &connections)
{
    QJsonArray array;
    for (const SQLRecentConnectionPtr &connection : connections)
        array.append(QJsonObject::fromVariantMap(connection->encodeWithCoder()));
    return encoded(array);
}

/// Text that cannot be decoded gives an empty list.
QJsonArray decoded(const QString &text)
{
    return QJsonDocument::fromJson(QByteArray::fromBase64(text.toLatin1())).array();
}

/// Ids are compared without regard to case.
QString idOf(const QString &connectionId)
{
    return connectionId.toLower();
}

QString idOf(const QJsonValue &stored)
{
    return idOf(stored.toObject().value(QStringLiteral("connectionId")).toString());
}

/// The stored text with changed entries replaced or appended and others removed: the entries of other
/// programs stay. `changed` has JSON objects by id.
QString merged(const QString &stored, QMap<QString, QJsonObject> changed, const QSet<QString> &removed)
{
    QJsonArray array;
    const QJsonArray before = decoded(stored);
    for (const QJsonValue &value : before) {
        const QString id = idOf(value);
        if (changed.contains(id))
            array.append(changed.take(id));
        else if (!removed.contains(id))
            array.append(value);
    }
    for (const QJsonObject &added : std::as_const(changed))
        array.append(added);
    return encoded(array);
}

SQLRecentConnectionPtr withId(const QList<SQLRecentConnectionPtr> &connections, const QString &connectionId)
{
    const auto found =
        std::find_if(connections.begin(), connections.end(), [&](const SQLRecentConnectionPtr &connection) {
            return connection->connectionId.compare(connectionId, Qt::CaseInsensitive) == 0;
        });
    return found == connections.end() ? nullptr : *found;
}

} // namespace

const QString SQLRecentConnectionList::ChangedNotificationName =
    QStringLiteral("SQLRecentConnectionListChangedNotification");

SQLRecentConnectionList::SQLRecentConnectionList(const QString &key, MakeEntry makeEntry)
    : m_key(key)
    , m_makeEntry(std::move(makeEntry))
    , m_store(KNKeyValueStore::shared())
{
}

SQLRecentConnectionList::~SQLRecentConnectionList() = default;

void SQLRecentConnectionList::load()
{
    m_state = State::Loading;
    m_store->textForKey(m_key,
                        [this, life = std::weak_ptr(m_life)](const QString &text, const KNError &error) {
                            if (!life.expired())
                                finishLoading(text, error);
                        });
}

void SQLRecentConnectionList::finishLoading(const QString &text, const KNError &error)
{
    if (m_state != State::Loading)
        return;
    m_problem = error;
    // Damaged data was moved aside; after a refusal the data can be read later.
    m_state = error && error.code() != KNKeyValueStore::Damaged ? State::NotRead : State::Loaded;
    if (error)
        KNLogHelper::sharedInstance()->logError(error, {});

    QSet<QString> withoutId;
    QList<SQLRecentConnectionPtr> stored;
    const QJsonArray array = decoded(text);
    for (const QJsonValue &value : array) {
        stored.append(entryOf(value.toObject()));
        m_stored.insert(idOf(value), value.toObject());
        if (idOf(value).isEmpty())
            withoutId.insert(idOf(stored.last()->connectionId));
    }
    // Writes the entries added before the stored ones arrived; the stored ones are part of the next write.
    if (!withoutId.isEmpty() && m_state == State::Loaded)
        writeAll();
    // Changes made before the store answered are newer.
    for (const SQLRecentConnectionPtr &connection : std::as_const(stored)) {
        if (!withId(m_connections, connection->connectionId))
            m_connections.append(connection);
    }
    if (m_hasUnsavedChanges && !m_isWriting && m_state == State::Loaded)
        write();
    if (!withoutId.isEmpty()) {
        for (const SQLRecentConnectionPtr &connection : std::as_const(stored))
            m_changed.insert(idOf(connection->connectionId));
    }
    notify();
}

SQLRecentConnectionPtr SQLRecentConnectionList::entryOf(const QJsonObject &stored) const
{
    const SQLRecentConnectionPtr connection = makeEntry();
    connection->initWithCoder(stored.toVariantMap());
    connection->registerColour();
    return connection;
}

QList<SQLRecentConnectionPtr> SQLRecentConnectionList::connections() const
{
    QList<SQLRecentConnectionPtr> sorted = m_connections;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const SQLRecentConnectionPtr &left, const SQLRecentConnectionPtr &right) {
                         return left->connectionDate > right->connectionDate;
                     });
    return sorted;
}

void SQLRecentConnectionList::update(const SQLRecentConnectionPtr &entry)
{
    entry->connectionDate = QDateTime::currentDateTimeUtc();
    if (m_state == State::Dropped)
        return;
    if (const SQLRecentConnectionPtr known = withId(m_connections, entry->connectionId))
        known->copyFields(*entry);
    else
        m_connections.append(entry);
    m_changed.insert(idOf(entry->connectionId));
    m_removed.remove(idOf(entry->connectionId));
    save();
    notify();
}

void SQLRecentConnectionList::remove(const SQLRecentConnectionPtr &entry)
{
    if (m_state == State::Dropped)
        return;
    KNAssert(contains(entry), "Connection is not available.", "Recent/SQLRecentConnectionList");
    m_connections.removeOne(entry);
    m_changed.remove(idOf(entry->connectionId));
    m_removed.insert(idOf(entry->connectionId));
    save();
    notify();
}

void SQLRecentConnectionList::removeAll()
{
    m_state = State::Dropped;
    m_connections.clear();
    m_store->removeKey(m_key, [this, life = std::weak_ptr(m_life)](const KNError &error) {
        if (life.expired())
            return;
        m_problem = error;
        notify();
    });
    notify();
}

void SQLRecentConnectionList::tryAgain()
{
    if (m_state == State::NotRead)
        load();
    else if (m_hasUnsavedChanges && !m_isWriting)
        write();
    notify();
}

void SQLRecentConnectionList::save()
{
    m_hasUnsavedChanges = true;
    if (m_state == State::Loaded && !m_isWriting)
        write();
}

/// Writes the list as it is in memory.
void SQLRecentConnectionList::writeAll()
{
    m_isWriting = true;
    m_store->setText(m_key, encoded(m_connections),
                     [this, life = std::weak_ptr(m_life)](const KNError &error) {
                         if (!life.expired())
                             finishWriting(error);
                     });
}

/// Writes this program's changes into the stored list, which other programs may have changed, and takes over
/// theirs.
void SQLRecentConnectionList::write()
{
    m_isWriting = true;
    m_hasUnsavedChanges = false;
    QMap<QString, QJsonObject> changed;
    for (const SQLRecentConnectionPtr &connection : std::as_const(m_connections)) {
        const QString id = idOf(connection->connectionId);
        if (m_changed.contains(id))
            changed.insert(id, QJsonObject::fromVariantMap(connection->encodeWithCoder()));
    }
    const QSet<QString> changedIds = std::exchange(m_changed, {});
    const QSet<QString> removed = std::exchange(m_removed, {});
    m_store->changeText(
        m_key, [changed, removed](const QString &stored) { return merged(stored, changed, removed); },
        [this, changedIds, removed, life = std::weak_ptr(m_life)](const QString &text, const KNError &error) {
            if (life.expired())
                return;
            if (error) {
                m_changed |= changedIds - m_removed;
                m_removed |= removed - m_changed;
                m_hasUnsavedChanges = true;
            } else if (m_state == State::Loaded) {
                takeOver(decoded(text), changedIds);
            }
            finishWriting(error);
        });
}

void SQLRecentConnectionList::finishWriting(const KNError &error)
{
    m_isWriting = false;
    m_problem = error;
    if (m_state == State::Dropped) { // removeAll() was called while the write was running
        removeAll();
        return;
    }
    if (error)
        KNLogHelper::sharedInstance()->logError(error, {});
    else if (m_hasUnsavedChanges)
        write();
    notify();
}

/// Takes over what other programs have stored, except for the entries that this one has changed.
void SQLRecentConnectionList::takeOver(const QJsonArray &stored, const QSet<QString> &written)
{
    QSet<QString> ids = m_changed;
    for (const QJsonValue &value : stored) {
        const QString id = idOf(value);
        ids.insert(id);
        const QJsonObject before = m_stored.value(id);
        m_stored.insert(id, value.toObject());
        if (value.toObject() == before) // no other program has changed it
            continue;
        if (id.isEmpty() || written.contains(id) || m_changed.contains(id) || m_removed.contains(id))
            continue;
        const SQLRecentConnectionPtr known = withId(m_connections, id);
        const SQLRecentConnectionPtr theirs = entryOf(value.toObject());
        if (!known) {
            m_connections.append(theirs);
            continue;
        }
        if (!theirs->rememberPassword)
            theirs->password = known->password; // known as long as this program runs
        known->copyFields(*theirs);
    }
    m_connections.removeIf(
        [&](const SQLRecentConnectionPtr &known) { return !ids.contains(idOf(known->connectionId)); });
}

void SQLRecentConnectionList::notify() const
{
    KNNotificationCenter::defaultCenter()->post(ChangedNotificationName);
}
