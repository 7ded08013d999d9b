#include "TestConnector.h"

/// Throws what is no exception class.
class ThrowsAnything : public TestConnector
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "Connector.json")
    Q_INTERFACES(KNConnectorPlugin)

public:
    ThrowsAnything() { throw 42; }
};

#include "ThrowsAnything.moc"
