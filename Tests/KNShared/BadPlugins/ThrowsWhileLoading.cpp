#include "TestConnector.h"

#include <stdexcept>

/// Cannot be constructed.
class ThrowsWhileLoading : public TestConnector
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "Connector.json")
    Q_INTERFACES(KNConnectorPlugin)

public:
    ThrowsWhileLoading() { throw std::runtime_error("out of sorts"); }
};

#include "ThrowsWhileLoading.moc"
