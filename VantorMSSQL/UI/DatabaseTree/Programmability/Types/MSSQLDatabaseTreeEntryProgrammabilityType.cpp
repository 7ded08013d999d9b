#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntryProgrammabilityType.h"

#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropTypeQueryLoader.h"

MSSQLDatabaseTreeEntryProgrammabilityType::MSSQLDatabaseTreeEntryProgrammabilityType(
    const QString &displayName, const QString &schema, const QString &typeName, int typeType)
    : m_schema(schema)
    , m_typeName(typeName)
    , m_typeType(typeType)
{
    setDisplayName(displayName);
}

KNMenu MSSQLDatabaseTreeEntryProgrammabilityType::menu()
{
    return {
        QStringLiteral("Menu"),
        {scriptAsMenuItem(
            {{"CREATE to",
              std::make_shared<MSSQLScriptCreateTypeQueryLoader>(m_typeName, m_schema, m_typeType)},
             {"DROP to", std::make_shared<MSSQLScriptDropTypeQueryLoader>(m_typeName, m_schema, m_typeType)},
             {"DROP and CREATE to", std::make_shared<MSSQLScriptDropAndCreateTypeQueryLoader>(
                                        m_typeName, m_schema, m_typeType)}})}};
}
