#pragma once

#include "UI/KNSharedUIExport.h"

#include <QString>

#include <memory>

/// Notifications of the desktop about work that has finished. On the UI thread.
class KNSHAREDUI_EXPORT KNUserNotifications
{
public:
    virtual ~KNUserNotifications();

    /// The notifications of the desktop unless setShared() has replaced them.
    static KNUserNotifications &shared();
    /// Replaces the shared object; null restores the desktop's.
    static void setShared(std::unique_ptr<KNUserNotifications> notifications);

    /// Shows a notification. Never waits; nothing is shown where the desktop has no notifications.
    virtual void notify(const QString &title, const QString &text) = 0;
};
