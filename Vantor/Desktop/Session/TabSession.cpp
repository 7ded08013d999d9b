#include "Desktop/Session/TabSession.h"

#include "Desktop/Session/PrivateFiles.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNPrivateFolder.h"
#include "UI/Workspace/KNDocumentTab.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

#include <algorithm>
#include <map>

namespace {

struct StoredTab
{
    KNDocumentState state;
    int position = 0;
    bool isCurrent = false; ///< in front
};

const QString IdKey = QStringLiteral("id");
const QString KindKey = QStringLiteral("kind");
const QString PositionKey = QStringLiteral("position");
const QString CurrentKey = QStringLiteral("current");
const QString KindOfOldFiles = QStringLiteral("query"); // for files from before other kinds existed

QByteArray toJson(const StoredTab &tab)
{
    QJsonObject object = tab.state.content;
    object.insert(IdKey, tab.state.id);
    object.insert(KindKey, tab.state.kind);
    object.insert(PositionKey, tab.position);
    if (tab.isCurrent)
        object.insert(CurrentKey, true);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<StoredTab> fromJson(const QByteArray &bytes)
{
    QJsonObject object = QJsonDocument::fromJson(bytes).object();
    StoredTab tab;
    tab.state.id = object.take(IdKey).toString();
    tab.state.kind = object.take(KindKey).toString(KindOfOldFiles);
    tab.position = object.take(PositionKey).toInt();
    tab.isCurrent = object.take(CurrentKey).toBool();
    tab.state.content = object;
    return tab.state.id.isEmpty() ? std::nullopt : std::optional(tab);
}

QList<StoredTab> readTabs(const QString &folder)
{
    QList<StoredTab> tabs;
    const QDir directory(folder);
    const auto names = directory.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QString &name : names) {
        QFile file(directory.filePath(name));
        const auto tab = file.open(QIODevice::ReadOnly) ? fromJson(file.readAll()) : std::nullopt;
        if (tab)
            tabs.append(*tab);
        else
            KNLogHelper::sharedInstance()->logMessage("A remembered tab is damaged: %@", file.fileName());
    }
    std::stable_sort(tabs.begin(), tabs.end(),
                     [](const StoredTab &a, const StoredTab &b) { return a.position < b.position; });
    return tabs;
}

QString fileOf(const QString &folder, const QString &id)
{
    return folder + u'/' + PrivateFiles::fileNameFor(id) + QStringLiteral(".json");
}

} // namespace

/// The pending writes, and the single thread that writes them.
struct TabSession::Writer
{
    QString folder;
    std::mutex mutex;
    std::map<QString, std::optional<StoredTab>> pending; ///< by tab, empty to remove it; guarded by mutex
    std::mutex writing;                                  ///< held while files are written

    bool write()
    {
        const std::lock_guard isWriting(writing);
        std::map<QString, std::optional<StoredTab>> work;
        {
            const std::lock_guard lock(mutex);
            work.swap(pending);
        }
        bool succeeded = true;
        for (const auto &[id, tab] : work) {
            const QString path = fileOf(folder, id);
            const bool done =
                tab ? KNReplacePrivateFile(path, toJson(*tab)) : !QFile::exists(path) || QFile::remove(path);
            if (done)
                continue;
            KNLogHelper::sharedInstance()->logMessage("A tab could not be remembered: %@", path);
            succeeded = false;
            const std::lock_guard lock(mutex);
            pending.emplace(id, tab); // unless there is a newer state
        }
        return succeeded;
    }
};

TabSession::TabSession(const QString &connectionId, QObject *parent)
    : QObject(parent)
    , m_timer(new QTimer(this))
    , m_writer(std::make_shared<Writer>())
{
    openFolder(connectionId);
    m_writer->folder = m_folder;
    for (const KNDocumentState &state : std::as_const(m_stored))
        m_ids.append(state.id);
    m_timer->setSingleShot(true);
    m_timer->setInterval(WriteDelay);
    connect(m_timer, &QTimer::timeout, this, &TabSession::write);
}

TabSession::~TabSession()
{
    flush();
}

/// Uses the first folder that no other program has open. Files that ended programs have left in other folders
/// are moved to it.
void TabSession::openFolder(const QString &connectionId)
{
    const QString base =
        PrivateFiles::stateFolder(QStringLiteral("sessions/")) + PrivateFiles::fileNameFor(connectionId);
    for (int number = 0;; ++number) {
        const QString folder = number == 0 ? base : KNFormat("%@.%d", base, number);
        if (m_lock && !QDir(folder).exists())
            return;
        if (!KNMakePrivateFolder(folder)) {
            m_folder = m_folder.isEmpty() ? folder : m_folder;
            return;
        }
        auto lock = std::make_unique<QLockFile>(folder + QStringLiteral("/lock"));
        lock->setStaleLockTime(0); // a lock is valid as long as its program runs, regardless of its age
        if (!lock->tryLock())
            continue;
        const QList<StoredTab> tabs = readTabs(folder);
        for (const StoredTab &tab : tabs) {
            m_stored.append(tab.state);
            if (tab.isCurrent && m_storedCurrent.isNull())
                m_storedCurrent = tab.state.id;
        }
        if (!m_lock) {
            m_folder = folder;
            m_lock = std::move(lock);
            continue;
        }
        int position = static_cast<int>(m_stored.size() - tabs.size());
        for (const StoredTab &tab : tabs) {
            if (KNReplacePrivateFile(fileOf(m_folder, tab.state.id), toJson({tab.state, position++})))
                QFile::remove(fileOf(folder, tab.state.id));
        }
    }
}

void TabSession::setTabs(const QList<KNDocumentTab *> &tabs)
{
    QStringList ids;
    for (KNDocumentTab *const tab : tabs) {
        if (const auto state = tab->savedState())
            ids.append(state->id);
        if (!m_tabs.contains(tab))
            connect(tab, &KNDocumentTab::stateChanged, this, [this, tab] { markChanged(tab); });
    }
    for (const QPointer<KNDocumentTab> &tab : std::as_const(m_tabs)) {
        if (tab && !tabs.contains(tab.data()))
            disconnect(tab, nullptr, this, nullptr);
    }
    {
        const std::lock_guard lock(m_writer->mutex);
        for (const QString &id : std::as_const(m_ids)) {
            if (!ids.contains(id))
                m_writer->pending[id] = std::nullopt;
        }
    }
    m_ids = ids;
    m_tabs.clear();
    for (KNDocumentTab *const tab : tabs)
        m_tabs.append(tab);
    m_changed = m_tabs; // their positions may have changed
    m_timer->start();
}

void TabSession::setCurrentTab(KNDocumentTab *tab)
{
    const QPointer<KNDocumentTab> before = std::exchange(m_current, tab);
    for (KNDocumentTab *const changed : {before.data(), tab}) {
        if (changed && before != tab)
            markChanged(changed);
    }
}

void TabSession::markChanged(KNDocumentTab *tab)
{
    if (!m_changed.contains(tab))
        m_changed.append(tab);
    if (!m_timer->isActive())
        m_timer->start();
}

void TabSession::collect()
{
    const std::lock_guard lock(m_writer->mutex);
    for (const QPointer<KNDocumentTab> &tab : std::as_const(m_changed)) {
        const qsizetype position = m_tabs.indexOf(tab);
        const auto state = tab && position >= 0 ? tab->savedState() : std::nullopt;
        if (state)
            m_writer->pending[state->id] = StoredTab{*state, static_cast<int>(position), tab == m_current};
    }
    m_changed.clear();
}

void TabSession::write()
{
    collect();
    KNDispatch::globalQueue([writer = m_writer, self = QPointer(this)] {
        const bool succeeded = writer->write();
        KNDispatch::mainQueue([self, succeeded] {
            if (self)
                self->finishWriting(succeeded);
        });
    });
}

void TabSession::finishWriting(bool succeeded)
{
    m_timer->setInterval(succeeded ? WriteDelay : RetryDelay);
    if (!succeeded && !m_timer->isActive())
        m_timer->start();
    if (m_hasFailed != succeeded)
        return;
    m_hasFailed = !succeeded;
    Q_EMIT writingFailed(m_hasFailed);
}

bool TabSession::flush()
{
    m_timer->stop();
    collect();
    return m_writer->write();
}
