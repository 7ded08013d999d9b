#include "SSH/KNSSHTunnelModel.h"

namespace {

const QString Host = QStringLiteral("host");
const QString Port = QStringLiteral("port");
const QString Username = QStringLiteral("username");
const QString KeyFile = QStringLiteral("keyFile");

} // namespace

QVariantMap KNSSHTunnelModel::toVariantMap() const
{
    if (!isUsed())
        return {};
    return {{Host, host}, {Port, port}, {Username, username}, {KeyFile, keyFile}};
}

KNSSHTunnelModel KNSSHTunnelModel::fromVariantMap(const QVariantMap &map)
{
    KNSSHTunnelModel model;
    model.host = map.value(Host).toString();
    if (!model.isUsed())
        return {};
    const int number = map.value(Port).toInt();
    model.port = number > 0 && number <= 65535 ? static_cast<quint16>(number) : 0;
    model.username = map.value(Username).toString();
    model.keyFile = map.value(KeyFile).toString();
    return model;
}
