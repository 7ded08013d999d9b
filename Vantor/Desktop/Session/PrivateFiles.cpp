#include "Desktop/Session/PrivateFiles.h"

#include "Foundation/KNPrivateFolder.h"

#include <QStandardPaths>
#include <QUrl>

QString PrivateFiles::stateFolder(const QString &name)
{
    return KNStateFolder() + QStringLiteral("/vantor/") + name;
}

QString PrivateFiles::dataFolder(const QString &name)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/vantor/") + name;
}

QString PrivateFiles::fileNameFor(const QString &text)
{
    // A leading dot would hide the file, or refer to a parent folder.
    const QByteArray name = QUrl::toPercentEncoding(text).left(200);
    return QString::fromLatin1(name.startsWith('.') ? "%2E" + name.mid(1) : name);
}
