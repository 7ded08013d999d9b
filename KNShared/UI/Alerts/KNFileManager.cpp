#include "UI/Alerts/KNFileManager.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace {

void openFolder(const QFileInfo &file)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(file.absolutePath()));
}

/// The file manager on the session bus (the interface org.freedesktop.FileManager1), which selects the file.
/// Where there is none, the program for folders opens the file's folder.
class DesktopFileManager : public KNFileManager
{
public:
    void showFolderOf(const QString &path) override
    {
        const QFileInfo file(path);
        const QDBusConnection bus = QDBusConnection::sessionBus();
        if (!bus.isConnected())
            return openFolder(file);
        const QString service = QStringLiteral("org.freedesktop.FileManager1");
        QDBusMessage call = QDBusMessage::createMethodCall(
            service, QStringLiteral("/org/freedesktop/FileManager1"), service, QStringLiteral("ShowItems"));
        const QUrl url = QUrl::fromLocalFile(file.absoluteFilePath());
        const QString startupId;
        call << QStringList{url.toString(QUrl::FullyEncoded)} << startupId;
        auto *const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), qApp);
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, qApp,
                         [file](QDBusPendingCallWatcher *answered) {
                             answered->deleteLater();
                             if (answered->isError())
                                 openFolder(file);
                         });
    }
};

std::unique_ptr<KNFileManager> &sharedFileManager()
{
    static std::unique_ptr<KNFileManager> fileManager = std::make_unique<DesktopFileManager>();
    return fileManager;
}

} // namespace

KNFileManager::~KNFileManager() = default;

KNFileManager &KNFileManager::shared()
{
    return *sharedFileManager();
}

void KNFileManager::setShared(std::unique_ptr<KNFileManager> fileManager)
{
    sharedFileManager() = fileManager ? std::move(fileManager) : std::make_unique<DesktopFileManager>();
}
