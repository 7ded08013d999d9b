#include "Foundation/KNPrivateFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

bool KNMakePrivateFolder(const QString &path)
{
    const QString folder = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    if (QFileInfo::exists(folder))
        return QFileInfo(folder).isDir();
    if (!KNMakePrivateFolder(QFileInfo(folder).path()))
        return false;
    // Another thread or program may have been quicker.
    return mkdir(QFile::encodeName(folder).constData(), S_IRWXU) == 0 || QFileInfo(folder).isDir();
}
