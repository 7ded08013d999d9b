#include "Foundation/KNLogHelper.h"

#include "Foundation/KNLogFile.h"
#include "Foundation/KNPrivateFolder.h"

#include <QDateTime>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace {

/// Replaces every occurrence of a secret; overlapping secrets are replaced together.
QString withoutSecrets(const QString &text, const QStringList &secrets)
{
    using Range = std::pair<qsizetype, qsizetype>;
    std::vector<Range> covered;
    for (const QString &secret : secrets) {
        for (qsizetype at = text.indexOf(secret); at >= 0; at = text.indexOf(secret, at + 1))
            covered.emplace_back(at, at + secret.size());
    }
    std::sort(covered.begin(), covered.end());

    QString result;
    qsizetype position = 0;
    for (std::size_t index = 0; index < covered.size();) {
        auto [begin, end] = covered[index];
        for (++index; index < covered.size() && covered[index].first < end; ++index)
            end = std::max(end, covered[index].second);
        result += QStringView(text).mid(position, begin - position);
        result += QLatin1String("********");
        position = end;
    }
    return result += QStringView(text).mid(position);
}

/// Formats a record as lines of the file. Later lines are indented, so that no text can look like another
/// record.
QString asLines(QString record)
{
    record.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    QString lines;
    lines.reserve(record.size());
    for (const QChar character : std::as_const(record)) {
        if (character == u'\n' || character == u'\r')
            lines += QLatin1String("\n    ");
        else
            lines += character < u' ' && character != u'\t' ? QChar(u'?') : character;
    }
    return lines;
}

QString describe(const QVariant &value)
{
    if (value.canConvert<QVariantMap>()) {
        QStringList entries;
        const QVariantMap map = value.toMap();
        for (auto entry = map.cbegin(); entry != map.cend(); ++entry)
            entries += entry.key() + QStringLiteral("=") + describe(entry.value());
        return u'{' + entries.join(QLatin1String(", ")) + u'}';
    }
    if (!value.canConvert<QString>() && value.canConvert<QVariantList>()) {
        QStringList entries;
        for (const QVariant &entry : value.toList())
            entries += describe(entry);
        return u'[' + entries.join(QLatin1String(", ")) + u']';
    }
    if (value.canConvert<QString>())
        return KNFormat("%@", value.toString());
    return KNFormat("(%s)", value.typeName());
}

QString describeEntries(const QVariantMap &entries)
{
    QString lines;
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
        lines += KNFormat("\n%@: %@", entry.key(), describe(entry.value()));
    return lines;
}

} // namespace

struct KNLogHelper::Private
{
    Private(const QString &folder, qint64 maximumBytes)
        : file(folder, maximumBytes)
    {
    }

    /// Writes a record; returns its lines.
    QString write(const QString &message)
    {
        const QString record = KNFormat(
            "%@ [%d] %@", QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs), gettid(), message);
        // Mask secrets before splitting the record into lines; a secret with a line end would not be found
        // afterwards.
        const QString lines = asLines(withoutSecrets(record, secrets));
        file.append(lines.toUtf8() + '\n');
        return lines;
    }

    /// Whether the message is the newest record's and follows it soon, so that it is counted instead of
    /// written.
    bool isRepetition(const QString &message)
    {
        constexpr auto MostCountedTime = std::chrono::seconds(1);
        const auto now = std::chrono::steady_clock::now();
        if (message == QStringView(newest) && now - newestTime < MostCountedTime) {
            ++repetitions;
            return true;
        }
        writeRepetitions();
        newest = message.toStdU16String();
        newestTime = now;
        return false;
    }

    void writeRepetitions()
    {
        if (repetitions > 0)
            write(KNFormat("The record above was repeated %ld %@.", repetitions,
                           repetitions == 1 ? "time" : "times"));
        repetitions = 0;
    }

    mutable std::mutex mutex; ///< guards everything below
    KNLogFile file;
    std::u16string newest; ///< the message of the newest record; shares no memory with the caller's text
    std::chrono::steady_clock::time_point newestTime;
    qint64 repetitions = 0; ///< of the newest record, not yet written
    QStringList secrets;
    std::function<void(const QString &)> observer;
};

KNLogHelper *KNLogHelper::sharedInstance()
{
    // Never destroyed: threads may still write log records while the program ends.
    static auto *const log = new KNLogHelper(KNStateFolder() + QStringLiteral("/vantor/logs"));
    return log;
}

KNLogHelper::KNLogHelper(const QString &folder, qint64 maximumBytes)
    : d(std::make_unique<Private>(folder, maximumBytes))
{
}

KNLogHelper::~KNLogHelper()
{
    d->writeRepetitions();
}

void KNLogHelper::logMessage(const QString &message)
{
    std::unique_lock lock(d->mutex);
    if (!d->observer && d->isRepetition(message))
        return;
    const QString lines = d->write(message);
    const auto observer = d->observer;
    lock.unlock();
    if (observer)
        observer(lines);
}

void KNLogHelper::logError(const KNError &error, const QVariantMap &details)
{
    logMessage(KNFormat("Error %@ %d: %@", error.domain(), error.code(), error.localizedDescription()) +
               describeEntries(details) + describeEntries(error.userInfo()));
}

void KNLogHelper::logSlowOperation(const QString &operation, double seconds, double thresholdSeconds)
{
    if (seconds > thresholdSeconds)
        logMessage("Slow operation: %@ took %0.3f s", operation, seconds);
}

void KNLogHelper::logErrorMessage(const QString &message, const QString &domain, const QVariantMap &details,
                                  double ifTimeTaken, double isGreatherThan)
{
    if (ifTimeTaken > isGreatherThan)
        logError(KNError(domain, 0, message), details);
}

void KNLogHelper::registerSecret(const QString &secret)
{
    constexpr qsizetype ShortestSecret = 3;
    if (secret.size() < ShortestSecret)
        return;
    // In SQL text the quotes of a secret are doubled.
    const QString inSQL = QString(secret).replace(u'\'', QLatin1String("''"));
    const std::lock_guard lock(d->mutex);
    for (const QString &form : {secret, inSQL}) {
        if (!d->secrets.contains(form))
            d->secrets += form;
    }
}

QString KNLogHelper::filePath() const
{
    const std::lock_guard lock(d->mutex);
    return d->file.path();
}

void KNLogHelper::setObserver(std::function<void(const QString &record)> observer)
{
    const std::lock_guard lock(d->mutex);
    d->observer = std::move(observer);
}
