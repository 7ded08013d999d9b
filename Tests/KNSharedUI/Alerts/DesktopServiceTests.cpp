#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/Alerts/KNFileManager.h"
#include "UI/Alerts/KNUserNotifications.h"

#include <QDBusConnection>
#include <QDesktopServices>
#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

using WindowTesting::waitFor;

namespace {

/// Records the folders that the desktop is asked to open.
class OpenedFolders : public QObject
{
    Q_OBJECT

public:
    OpenedFolders() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~OpenedFolders() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QStringList folders;

public Q_SLOTS:
    void open(const QUrl &url) { folders.append(url.toLocalFile()); }
};

/// The desktop's services, as an object on the bus.
class DesktopService : public QObject
{
    Q_OBJECT

public:
    QStringList shown;
    QStringList notified;
};

class FileManagerService : public DesktopService
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public Q_SLOTS:
    void ShowItems(const QStringList &urls, const QString &) { shown = urls; }
};

class NotificationService : public DesktopService
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public Q_SLOTS:
    uint Notify(const QString &, uint, const QString &, const QString &title, const QString &body,
                const QStringList &, const QVariantMap &, int)
    {
        notified = {title, body};
        return 1;
    }
};

/// A session bus of its own for a test, which runs in a process of its own.
class DesktopServices : public testing::Test
{
protected:
    void startBus()
    {
        const QString program = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
        if (program.isEmpty())
            GTEST_SKIP() << "dbus-daemon is not installed";
        m_bus.start(program, {QStringLiteral("--session"), QStringLiteral("--nofork"),
                              QStringLiteral("--print-address")});
        ASSERT_TRUE(m_bus.waitForReadyRead(10000));
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.readLine().trimmed());
    }
    ~DesktopServices() override
    {
        m_bus.kill();
        m_bus.waitForFinished();
    }

    OpenedFolders m_opened;
    QProcess m_bus;
};

} // namespace

TEST_F(DesktopServices, OpenTheFolderWithoutABus)
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    KNFileManager::shared().showFolderOf(QStringLiteral("/tmp/some/a.sql"));
    EXPECT_TRUE(waitFor([&] { return m_opened.folders == QStringList{QStringLiteral("/tmp/some")}; }));
    KNUserNotifications::shared().notify(QStringLiteral("a"), QStringLiteral("b")); // must not block or fail
}

TEST_F(DesktopServices, OpenTheFolderWhereNoFileManagerAnswers)
{
    startBus();
    if (IsSkipped())
        return;
    KNFileManager::shared().showFolderOf(QStringLiteral("/tmp/some/a.sql"));
    EXPECT_TRUE(waitFor([&] { return m_opened.folders == QStringList{QStringLiteral("/tmp/some")}; }));
}

TEST_F(DesktopServices, ShowTheFileInTheFileManager)
{
    startBus();
    if (IsSkipped())
        return;
    FileManagerService service;
    QDBusConnection bus = QDBusConnection::sessionBus();
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &service,
                                   QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.FileManager1")));
    KNFileManager::shared().showFolderOf(QString::fromUtf8("/tmp/a b/\xc3\xa4.sql"));
    EXPECT_TRUE(waitFor([&] { return !service.shown.isEmpty(); }));
    EXPECT_EQ(service.shown, QStringList{QStringLiteral("file:///tmp/a%20b/%C3%A4.sql")});
    EXPECT_TRUE(m_opened.folders.isEmpty());
}

TEST_F(DesktopServices, NotifyWithoutMarkup)
{
    startBus();
    if (IsSkipped())
        return;
    NotificationService service;
    QDBusConnection bus = QDBusConnection::sessionBus();
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), &service,
                                   QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.Notifications")));
    KNUserNotifications::shared().notify(QStringLiteral("Done"),
                                         QStringLiteral("Index <b> has been dropped"));
    EXPECT_TRUE(waitFor([&] { return !service.notified.isEmpty(); }));
    EXPECT_EQ(service.notified,
              (QStringList{QStringLiteral("Done"), QStringLiteral("Index &lt;b&gt; has been dropped")}));
}

#include "DesktopServiceTests.moc"
