#pragma once

#include "KNSharedExport.h"

#include <QString>
#include <QtPlugin>

#include <memory>

class VantorDBC;

/// The contract between the programs and a connector, a module that knows one kind of database server. The
/// module's root object implements it and names it in its metadata:
///
///     Q_PLUGIN_METADATA(IID KNConnectorPlugin_iid FILE "Connector.json")
///     Q_INTERFACES(KNConnectorPlugin)
///
/// with {"contract": 8, "name": "..."} in the file. A change that breaks modules built before it raises both
/// numbers.
class KNSHARED_EXPORT KNConnectorPlugin
{
public:
    virtual ~KNConnectorPlugin();

    /// The display name of the server kind ("SQL Server"). Any thread.
    virtual QString name() const = 0;
    /// Returns new, empty connection settings, the factory of all other connector objects. Any thread.
    virtual std::shared_ptr<VantorDBC> createConnectionDetails() const = 0;
};

#define KNConnectorPlugin_iid "com.quorvex.vantor.connector/2"
Q_DECLARE_INTERFACE(KNConnectorPlugin, KNConnectorPlugin_iid)
