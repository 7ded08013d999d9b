#include "Recent/SQLRecentConnectionList.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNNotificationCenter.h"
#include "Recent/KNDBCTabColorHelper.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

QString encoded(const QList<SQLRecentConnectionPtr> &connections)
{
    QJsonArray array;
    for (const SQLRecentConnectionPtr &connection : connections)
        array.append(QJsonObject::fromVariantMap(connection->encodeWithCoder()));
    return QString::fromLatin1(QJsonDocument(array).toJson(QJsonDocument::Compact).toBase64());
}

/// Text that cannot be decoded gives an empty list.
QJsonArray decoded(const QString &text)
{
    return QJsonDocument::fromJson(QByteArray::fromBase64(text.toLatin1())).array();
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

    bool gaveIds = false;
    QList<SQLRecentConnectionPtr> stored;
    const QJsonArray array = decoded(text);
    for (const QJsonValue &value : array) {
        const QVariantMap coder = value.toObject().toVariantMap();
        gaveIds = gaveIds || coder.value(QStringLiteral("connectionId")).toString().isEmpty();
        const SQLRecentConnectionPtr connection = makeEntry();
        connection->initWithCoder(coder);
        KNDBCTabColorHelper::setColorFromAliasTemporary(connection->alias, connection->connectionId);
        stored.append(connection);
    }
    // Writes the entries added before the stored ones arrived; the stored ones are part of the next write.
    if (gaveIds && m_state == State::Loaded)
        save();
    // Changes made before the store answered are newer.
    for (const SQLRecentConnectionPtr &connection : std::as_const(stored)) {
        if (!withId(m_connections, connection->connectionId))
            m_connections.append(connection);
    }
    if (m_hasUnsavedChanges && !m_isWriting && m_state == State::Loaded)
        write();
    notify();
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
    save();
    notify();
}

void SQLRecentConnectionList::remove(const SQLRecentConnectionPtr &entry)
{
    if (m_state == State::Dropped)
        return;
    KNAssert(contains(entry), "Connection is not available.", "Recent/SQLRecentConnectionList");
    m_connections.removeOne(entry);
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

void SQLRecentConnectionList::write()
{
    m_isWriting = true;
    m_hasUnsavedChanges = false;
    m_store->setText(
        m_key, encoded(m_connections), [this, life = std::weak_ptr(m_life)](const KNError &error) {
            if (life.expired())
                return;
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
            m_hasUnsavedChanges = m_hasUnsavedChanges || error.isSet();
            notify();
        });
}

void SQLRecentConnectionList::notify() const
{
    KNNotificationCenter::defaultCenter()->post(ChangedNotificationName);
}
