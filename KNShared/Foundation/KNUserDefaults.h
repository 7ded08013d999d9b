#pragma once

#include "KNSharedExport.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <mutex>

class QSettings;

/// The user's preferences, an INI file below the XDG config folder. Thread-safe. The file keeps
/// text and lists of text: numbers and booleans come back from it as text that converts to them.
class KNSHARED_EXPORT KNUserDefaults
{
public:
    static KNUserDefaults *standardUserDefaults();

    explicit KNUserDefaults(const QString &filePath);
    ~KNUserDefaults();

    /// The value for `key`, or the default where there is none.
    bool boolForKey(const QString &key, bool defaultValue = false) const;
    QString stringForKey(const QString &key, const QString &defaultValue = {}) const;
    /// Invalid where there is none.
    QVariant objectForKey(const QString &key) const;
    void setObject(const QString &key, const QVariant &value);
    void removeObject(const QString &key);
    /// Writes pending changes to the file; false when it could not be written.
    bool synchronize();

private:
    mutable std::mutex m_mutex;
    std::unique_ptr<QSettings> m_settings; ///< guarded by m_mutex
};
