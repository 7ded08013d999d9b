#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntryProgrammabilityType.h"

#include "Scripts/MSSQLScriptLoaders.h"

MSSQLDatabaseTreeEntryProgrammabilityType::MSSQLDatabaseTreeEntryProgrammabilityType(
    const QString &displayName, const QString &schema, const QString &typeName)
    : m_schema(schema)
    , m_typeName(typeName)
{
    setDisplayName(displayName);
}

KNMenu MSSQLDatabaseTreeEntryProgrammabilityType::menu()
{
    const QString title = QStringLiteral("Script as");
    const auto script = [&](const char *text, MSSQLScript kind) {
        return createScriptToOptionsMenu(text, MSSQLScriptLoaders::loader(kind, m_typeName, m_schema));
    };
    return {
        QStringLiteral("Menu"),
        {KNMenuItem::withSubmenu(
            title, {title,
                    {script("CREATE to", MSSQLScript::CreateType), script("DROP to", MSSQLScript::DropType),
                     script("DROP and CREATE to", MSSQLScript::DropAndCreateType)}})}};
}
