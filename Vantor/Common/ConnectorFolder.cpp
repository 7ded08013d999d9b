#include "Common/ConnectorFolder.h"

#include "Connector/KNConnectorLoader.h"
#include "Connector/KNConnectorPlugin.h"
#include "Foundation/KNFormat.h"

#include <QCoreApplication>
#include <QDir>

namespace {

QString path()
{
    const QDir folder(QCoreApplication::applicationDirPath());
    const QString beside = folder.filePath(QStringLiteral("connectors"));
    return QDir(beside).exists() ? beside
                                 : QDir::cleanPath(folder.filePath(QStringLiteral(VANTOR_CONNECTORS)));
}

} // namespace

KNConnectorPlugin *ConnectorFolder::loadConnector(QStringList *problems)
{
    const QDir folder(path());
    for (const QFileInfo &file : folder.entryInfoList({QStringLiteral("*.so")}, QDir::Files, QDir::Name)) {
        KNError error;
        if (KNConnectorPlugin *connector = KNConnectorLoader::load(file.filePath(), &error))
            return connector;
        problems->append(error.localizedDescription());
    }
    problems->append(KNFormat("There is no connector in %@.", folder.path()));
    return nullptr;
}
