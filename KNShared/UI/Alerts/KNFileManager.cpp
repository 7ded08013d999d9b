#include "UI/Alerts/KNFileManager.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace {

class DesktopFileManager : public KNFileManager
{
public:
    void showFolderOf(const QString &file) override
    {
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(file).absolutePath()));
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
