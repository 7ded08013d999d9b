#include "Desktop/Session/QueryHistory.h"

#include "Desktop/Session/PrivateFiles.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNPrivateFolder.h"
#include "Foundation/KNSerialQueue.h"
#include "SQL/KNSQLSecrets.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Shared by all instances: two histories of a connection use the same file.
KNSerialQueue &queue()
{
    static KNSerialQueue queue;
    return queue;
}

QByteArray toLine(const QueryHistoryEntry &entry)
{
    QJsonObject object{{QStringLiteral("time"), entry.time.toUTC().toString(Qt::ISODateWithMs)},
                       {QStringLiteral("text"), entry.text},
                       {QStringLiteral("database"), entry.database},
                       {QStringLiteral("milliseconds"), entry.milliseconds},
                       {QStringLiteral("rows"), entry.rowCount}};
    if (!entry.error.isNull())
        object.insert(QStringLiteral("error"), entry.error);
    if (entry.wasCancelled)
        object.insert(QStringLiteral("cancelled"), true);
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<QueryHistoryEntry> fromLine(const QByteArray &line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    QueryHistoryEntry entry;
    entry.time = QDateTime::fromString(object.value(QLatin1String("time")).toString(), Qt::ISODateWithMs);
    entry.text = object.value(QLatin1String("text")).toString();
    entry.database = object.value(QLatin1String("database")).toString();
    entry.milliseconds = object.value(QLatin1String("milliseconds")).toInteger();
    entry.rowCount = object.value(QLatin1String("rows")).toInteger();
    if (object.contains(QLatin1String("error")))
        entry.error = object.value(QLatin1String("error")).toString();
    entry.wasCancelled = object.value(QLatin1String("cancelled")).toBool();
    return entry.time.isValid() && !entry.text.isEmpty() ? std::optional(entry) : std::nullopt;
}

/// Returns the oldest first.
QList<QueryHistoryEntry> read(const QString &path)
{
    QList<QueryHistoryEntry> entries;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return entries;
    while (!file.atEnd()) {
        if (const auto entry = fromLine(file.readLine()))
            entries.append(*entry);
    }
    return entries;
}

/// Appends whole lines in one write, after lines that other programs may have added.
bool append(const QString &path, const QByteArray &line)
{
    if (!KNMakePrivateFolder(QFileInfo(path).path()))
        return false;
    const int file =
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0)
        return false;
    struct stat before = {};
    const bool written = ::fstat(file, &before) == 0 &&
                         ::write(file, line.constData(), static_cast<size_t>(line.size())) == line.size();
    // An incomplete line would damage the next one.
    if (!written && ::ftruncate(file, before.st_size) != 0)
        KNLogHelper::sharedInstance()->logMessage("The history may hold half an entry: %@", path);
    ::close(file);
    return written;
}

/// Keeps the newest entries, half of the limit, so that it does not happen at every run.
void shorten(const QString &path)
{
    if (QFileInfo(path).size() <= QueryHistory::MostBytes)
        return;
    const QList<QueryHistoryEntry> entries = read(path);
    QByteArray kept;
    qsizetype count = 0;
    for (auto entry = entries.crbegin(); entry != entries.crend(); ++entry) {
        const QByteArray line = toLine(*entry);
        if (++count > QueryHistory::MostEntries / 2 ||
            kept.size() + line.size() > QueryHistory::MostBytes / 2)
            break;
        kept.prepend(line);
    }
    KNReplacePrivateFile(path, kept);
}

} // namespace

QueryHistory::QueryHistory(const QString &connectionId)
    : m_path(PrivateFiles::dataFolder(QStringLiteral("history/")) + PrivateFiles::fileNameFor(connectionId) +
             QStringLiteral(".jsonl"))
{
}

void QueryHistory::add(const QueryHistoryEntry &entry) const
{
    queue().add([path = m_path, masked = QueryHistoryEntry(entry)]() mutable {
        QStringList secrets;
        masked.text = KNSQLWithoutSecrets(masked.text, &secrets).left(LongestText);
        masked.error = KNTextWithoutSecrets(masked.error, secrets);
        if (!append(path, toLine(masked)))
            KNLogHelper::sharedInstance()->logMessage("The query history could not be written: %@", path);
        shorten(path);
    });
}

void QueryHistory::load(std::function<void(const QList<QueryHistoryEntry> &)> loaded) const
{
    queue().add([path = m_path, loaded = std::move(loaded)] {
        QList<QueryHistoryEntry> entries = read(path);
        std::reverse(entries.begin(), entries.end());
        entries.resize(std::min(entries.size(), MostEntries));
        KNDispatch::mainQueue([entries, loaded] { loaded(entries); });
    });
}

void QueryHistory::removeAll(std::function<void(const KNError &error)> removed) const
{
    queue().add([path = m_path, removed = std::move(removed)] {
        QFile file(path);
        KNError error;
        if (file.exists() && !file.remove())
            error = KNError(QStringLiteral("com.quorvex.vantor.history"), 0,
                            tr("The history could not be deleted. %1").arg(file.errorString()));
        KNDispatch::mainQueue([error, removed] { removed(error); });
    });
}
