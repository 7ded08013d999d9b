#include "TestConnector.h"

/// Keeps the contract in everything.
class GoodConnector : public TestConnector
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "Connector.json")
    Q_INTERFACES(KNConnectorPlugin)
};

#include "GoodConnector.moc"
