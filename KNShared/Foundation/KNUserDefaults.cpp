#include "Foundation/KNUserDefaults.h"

#include "Foundation/KNPrivateFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

KNUserDefaults *KNUserDefaults::standardUserDefaults()
{
    static KNUserDefaults defaults(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                                   QStringLiteral("/vantor/preferences.ini"));
    return &defaults;
}

KNUserDefaults::KNUserDefaults(const QString &filePath)
    : m_settings(std::make_unique<QSettings>(filePath, QSettings::IniFormat))
{
}

KNUserDefaults::~KNUserDefaults()
{
    synchronize();
}

bool KNUserDefaults::boolForKey(const QString &key, bool defaultValue) const
{
    const QVariant value = objectForKey(key);
    return value.isValid() ? value.toBool() : defaultValue;
}

QString KNUserDefaults::stringForKey(const QString &key, const QString &defaultValue) const
{
    const QVariant value = objectForKey(key);
    return value.isValid() ? value.toString() : defaultValue;
}

QVariant KNUserDefaults::objectForKey(const QString &key) const
{
    const std::lock_guard lock(m_mutex);
    return m_settings->value(key);
}

void KNUserDefaults::setObject(const QString &key, const QVariant &value)
{
    const std::lock_guard lock(m_mutex);
    m_settings->setValue(key, value);
}

void KNUserDefaults::removeObject(const QString &key)
{
    const std::lock_guard lock(m_mutex);
    m_settings->remove(key);
}

bool KNUserDefaults::synchronize()
{
    const std::lock_guard lock(m_mutex);
    if (!KNMakePrivateFolder(QFileInfo(m_settings->fileName()).path()))
        return false;
    m_settings->sync();
    if (m_settings->status() != QSettings::NoError)
        return false;
    const QString path = m_settings->fileName();
    return !QFile::exists(path) || QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
}
