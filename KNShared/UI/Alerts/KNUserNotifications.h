#pragma once

#include "UI/KNSharedUIExport.h"

#include <QString>

#include <memory>

/// Desktop notifications about finished work. On the UI thread.
class KNSHAREDUI_EXPORT KNUserNotifications
{
public:
    virtual ~KNUserNotifications();

    /// The desktop's notifications, unless setShared() replaced them.
    static KNUserNotifications &shared();
    /// Replaces the shared object; null restores the desktop's notifications.
    static void setShared(std::unique_ptr<KNUserNotifications> notifications);

    /// Shows a notification. Does not block; does nothing if the desktop has no notifications.
    virtual void notify(const QString &title, const QString &text) = 0;
};
