#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntryProgrammabilityType.h"

#include "Catalog/MSSQLObjectProperties.h"
#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropTypeQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"

MSSQLDatabaseTreeEntryProgrammabilityType::MSSQLDatabaseTreeEntryProgrammabilityType(
    const QString &displayName, const QString &schema, const QString &typeName, int typeType)
    : m_schema(schema)
    , m_typeName(typeName)
    , m_typeType(typeType)
{
    setDisplayName(displayName);
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryProgrammabilityType::propertiesLoader() const
{
    return MSSQLObjectProperties::loader(
        databaseConnectionDetails(), "Properties_Type",
        {{QStringLiteral("SCHEMA"), m_schema}, {QStringLiteral("TYPE"), m_typeName}});
}

KNMenu MSSQLDatabaseTreeEntryProgrammabilityType::menu()
{
    const MSSQLScriptSubject type{QStringLiteral("TYPE"), m_schema, m_typeName, databaseConnectionDetails()};
    return {
        QStringLiteral("Menu"),
        {scriptAsMenuItem(
            {{"CREATE to", type.creation<MSSQLScriptCreateTypeQueryLoader>(m_typeName, m_schema, m_typeType)},
             {"DROP to", type.script<MSSQLScriptDropTypeQueryLoader>(m_typeName, m_schema, m_typeType)},
             {"DROP and CREATE to",
              type.creation<MSSQLScriptDropAndCreateTypeQueryLoader>(m_typeName, m_schema, m_typeType)}})}};
}
