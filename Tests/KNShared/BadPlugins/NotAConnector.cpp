#include "Connector/KNConnectorPlugin.h"

#include <QObject>

/// Claims the contract in its metadata, but its root object does not implement it.
class NotAConnector : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "Connector.json")
};

#include "NotAConnector.moc"
