#include "TestConnector.h"

/// Does not say which contract it keeps.
class NoContract : public TestConnector
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "NoContract.json")
    Q_INTERFACES(KNConnectorPlugin)
};

#include "NoContract.moc"
