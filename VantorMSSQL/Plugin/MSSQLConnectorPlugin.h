#pragma once

#include "Connector/KNConnectorPlugin.h"
#include "UI/MSSQLUserInterface.h"

#include <QObject>

/// The root object of the SQL Server connector.
class MSSQLConnectorPlugin : public QObject, public KNConnectorPlugin, public MSSQLUserInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "MSSQLConnector.json")
    Q_INTERFACES(KNConnectorPlugin KNConnectorUserInterface)

public:
    /// Removes the login files of killed processes.
    MSSQLConnectorPlugin();

    QString name() const override;
    std::shared_ptr<VantorDBC> createConnectionDetails() const override;
};
