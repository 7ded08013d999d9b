#include "TestConnector.h"

/// Says that it is a plug-in for something else.
class WrongInterface : public TestConnector
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quorvex.vantor.theme/1" FILE "Connector.json")
    Q_INTERFACES(KNConnectorPlugin)
};

#include "WrongInterface.moc"
