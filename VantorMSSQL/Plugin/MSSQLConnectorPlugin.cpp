#include "Plugin/MSSQLConnectorPlugin.h"

#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Implementations/MSSQLLoginFile.h"

MSSQLConnectorPlugin::MSSQLConnectorPlugin()
{
    MSSQLLoginFile::removeAbandoned();
}

QString MSSQLConnectorPlugin::name() const
{
    return QStringLiteral("SQL Server");
}

std::shared_ptr<VantorDBC> MSSQLConnectorPlugin::createConnectionDetails() const
{
    return std::make_shared<MSSQLDatabaseConnectionDetails>();
}
