#include "Foundation/KNPrivateFolder.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNReplaceFile.h"

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
    // Another thread or program may have created it first.
    return mkdir(QFile::encodeName(folder).constData(), S_IRWXU) == 0 || QFileInfo(folder).isDir();
}

QString KNStateFolder()
{
    // The XDG specification requires relative folders to be ignored.
    const QString folder = qEnvironmentVariable("XDG_STATE_HOME");
    return QDir::isAbsolutePath(folder) ? folder : QDir::homePath() + QStringLiteral("/.local/state");
}

bool KNReplacePrivateFile(const QString &path, const QByteArray &content, QString *why)
{
    const QString folder = QFileInfo(path).path();
    if (KNMakePrivateFolder(folder))
        return KNReplaceFile(path, content, why, QFile::ReadOwner | QFile::WriteOwner);
    if (why)
        *why = KNFormat("there is no folder \"%@\"", folder);
    return false;
}
