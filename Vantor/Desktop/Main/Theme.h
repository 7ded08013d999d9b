#pragma once

#include "Foundation/KNNotificationCenter.h"

#include <QObject>
#include <QPalette>

class QDBusVariant;

/// Applies a light or dark theme, according to the preferences or the desktop's setting.
class Theme : public QObject
{
    Q_OBJECT

public:
    /// Applies the theme now and whenever the preferences or the desktop's setting change. Lives as long as
    /// the application.
    explicit Theme(QObject *parent);

    static QPalette lightPalette();
    static QPalette darkPalette();

private Q_SLOTS:
    void desktopChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void apply();
    void setDesktopScheme(const QVariant &value);

    bool m_isDesktopDark = false;
    KNNotificationCenter::Token m_preferencesChanged;
};
