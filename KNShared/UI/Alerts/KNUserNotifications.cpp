#include "UI/Alerts/KNUserNotifications.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QGuiApplication>
#include <QVariantMap>

namespace {

/// The notification service of the session bus (Desktop Notifications Specification 1.2).
class DesktopNotifications : public KNUserNotifications
{
public:
    void notify(const QString &title, const QString &text) override
    {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
        // The body may contain markup.
        call << QGuiApplication::applicationDisplayName() << 0u << QGuiApplication::desktopFileName() << title
             << text.toHtmlEscaped() << QStringList() << QVariantMap() << -1;
        QDBusConnection::sessionBus().asyncCall(call);
    }
};

std::unique_ptr<KNUserNotifications> &sharedNotifications()
{
    static std::unique_ptr<KNUserNotifications> notifications = std::make_unique<DesktopNotifications>();
    return notifications;
}

} // namespace

KNUserNotifications::~KNUserNotifications() = default;

KNUserNotifications &KNUserNotifications::shared()
{
    return *sharedNotifications();
}

void KNUserNotifications::setShared(std::unique_ptr<KNUserNotifications> notifications)
{
    sharedNotifications() =
        notifications ? std::move(notifications) : std::make_unique<DesktopNotifications>();
}
