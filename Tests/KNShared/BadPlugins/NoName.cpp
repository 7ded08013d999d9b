#include "TestConnector.h"

/// Does not say what it connects to.
class NoName : public TestConnector
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "NoName.json")
    Q_INTERFACES(KNConnectorPlugin)
};

#include "NoName.moc"
