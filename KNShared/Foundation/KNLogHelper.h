#pragma once

#include "Foundation/KNError.h"
#include "Foundation/KNFormat.h"
#include "KNSharedExport.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>

/// The shared log: lines with time and thread in a rotating file in the XDG state folder
/// ($XDG_STATE_HOME/vantor/logs, file 0600 in a folder 0700). Thread-safe. Registered secrets are never
/// written.
class KNSHARED_EXPORT KNLogHelper
{
public:
    static KNLogHelper *sharedInstance();

    /// Creates a separate log in `folder`, for tests. The file is named "vantor.log" and rotates at
    /// `maximumBytes` (vantor.1.log ... vantor.4.log are kept).
    explicit KNLogHelper(const QString &folder, qint64 maximumBytes = qint64(4) * 1024 * 1024);
    ~KNLogHelper();
    KNLogHelper(const KNLogHelper &) = delete;
    KNLogHelper &operator=(const KNLogHelper &) = delete;

    /// Writes a record. Records with the same message that follow within a second are only counted; the count
    /// is written before the next record.
    void logMessage(const QString &message);
    template <typename... Arguments>
    void logMessage(const char *format, const Arguments &...arguments)
    {
        logMessage(KNFormat(format, arguments...));
    }
    /// Writes domain, code and description, then one line per detail, then the user info.
    void logError(const KNError &error, const QVariantMap &details);
    /// Writes a record when `seconds` exceeds `thresholdSeconds`.
    void logSlowOperation(const QString &operation, double seconds, double thresholdSeconds = 1.0);

    /// Writes an error record with this domain when `ifTimeTaken` (seconds) exceeds `isGreatherThan`.
    void logErrorMessage(const QString &message, const QString &domain, const QVariantMap &details,
                         double ifTimeTaken, double isGreatherThan);

    /// Replaces `secret` with "********" in all later lines. Texts shorter than 3 characters are ignored. A
    /// secret stays registered as long as the log exists.
    void registerSecret(const QString &secret);
    /// The path of the current file; empty if no file could be opened (lines are then dropped).
    QString filePath() const;
    /// Also passes every record (one per call of the functions above, later lines indented) to `observer`
    /// when it is written, on the logging thread; an empty function removes the observer. For tests.
    void setObserver(std::function<void(const QString &record)> observer);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
