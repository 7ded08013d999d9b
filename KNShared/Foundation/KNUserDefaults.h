#pragma once

#include "KNSharedExport.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <mutex>

class QSettings;

/// The user's preferences in an INI file in the XDG config folder. Thread-safe. The file stores texts and
/// lists of texts: numbers and booleans are read back as text that converts to them.
class KNSHARED_EXPORT KNUserDefaults
{
public:
    static KNUserDefaults *standardUserDefaults();

    explicit KNUserDefaults(const QString &filePath);
    ~KNUserDefaults();

    /// The value for `key`, or the default if there is none.
    bool boolForKey(const QString &key, bool defaultValue = false) const;
    QString stringForKey(const QString &key, const QString &defaultValue = {}) const;
    /// The value for `key`; invalid if there is none.
    QVariant objectForKey(const QString &key) const;
    void setObject(const QString &key, const QVariant &value);
    void removeObject(const QString &key);
    /// Writes pending changes to the file; false if it could not be written.
    bool synchronize();

private:
    mutable std::mutex m_mutex;
    std::unique_ptr<QSettings> m_settings; ///< guarded by m_mutex
};
