#include "Desktop/Session/PrivateFiles.h"

#include "Foundation/KNPrivateFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

QString PrivateFiles::stateFolder(const QString &name)
{
    const QString state = qEnvironmentVariable("XDG_STATE_HOME");
    const QString folder =
        QDir::isAbsolutePath(state) ? state : QDir::homePath() + QStringLiteral("/.local/state");
    return folder + QStringLiteral("/vantor/") + name;
}

QString PrivateFiles::dataFolder(const QString &name)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/vantor/") + name;
}

QString PrivateFiles::fileNameFor(const QString &text)
{
    // A leading dot would hide the file, or lead out of its folder.
    const QByteArray name = QUrl::toPercentEncoding(text).left(200);
    return QString::fromLatin1(name.startsWith('.') ? "%2E" + name.mid(1) : name);
}

bool PrivateFiles::replace(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    if (!KNMakePrivateFolder(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly))
        return false;
    // Private before anything is in it.
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    return file.write(content) == content.size() && file.commit();
}
