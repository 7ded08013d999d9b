#include "TestConnector.h"

QString nameFromALibraryThatIsNotThere();

/// Calls a function that no library defines.
class UnresolvedSymbol : public TestConnector
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "Connector.json")
    Q_INTERFACES(KNConnectorPlugin)

public:
    QString name() const override { return nameFromALibraryThatIsNotThere(); }
};

#include "UnresolvedSymbol.moc"
