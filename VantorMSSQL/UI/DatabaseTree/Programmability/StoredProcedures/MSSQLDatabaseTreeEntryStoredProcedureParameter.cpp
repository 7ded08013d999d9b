#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedureParameter.h"

#include "Catalog/MSSQLObjectProperties.h"

MSSQLDatabaseTreeEntryStoredProcedureParameter::MSSQLDatabaseTreeEntryStoredProcedureParameter(
    const QString &schema, const QString &procedureName)
    : m_schema(schema)
    , m_procedureName(procedureName)
{
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryStoredProcedureParameter::propertiesLoader() const
{
    return MSSQLObjectProperties::loader(databaseConnectionDetails(), "Properties_Parameter",
                                         {{QStringLiteral("SCHEMA"), m_schema},
                                          {QStringLiteral("OBJECT"), m_procedureName},
                                          {QStringLiteral("PARAMETER"), displayName()}});
}
