#pragma once

#include "Foundation/KNNotificationCenter.h"

#include <QObject>
#include <QPalette>

class QDBusVariant;

/// Paints the program light or dark, as the preferences say or as the desktop does.
class Theme : public QObject
{
    Q_OBJECT

public:
    /// Applies the preferences now and whenever they or the desktop change. Lives as long as the application.
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
