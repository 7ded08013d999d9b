#include "TestConnector.h"

/// Keeps a contract that is yet to come.
class NewerContract : public TestConnector
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "NewerContract.json")
    Q_INTERFACES(KNConnectorPlugin)
};

#include "NewerContract.moc"
