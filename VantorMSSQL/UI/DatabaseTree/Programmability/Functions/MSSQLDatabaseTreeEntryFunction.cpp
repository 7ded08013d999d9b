#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntryFunction.h"

#include "Scripts/MSSQLScriptLoaders.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

MSSQLDatabaseTreeEntryFunction::MSSQLDatabaseTreeEntryFunction(const QString &displayName,
                                                               const QString &schema,
                                                               const QString &functionName)
    : m_schema(schema)
    , m_functionName(functionName)
{
    setDisplayName(displayName);
}

KNMenu MSSQLDatabaseTreeEntryFunction::menu()
{
    return {QStringLiteral("Test"),
            {actionItem("New function", "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewFunction")),
             actionItem("Modify", "addQueryTabWithQueryLoader:",
                        MSSQLScriptLoaders::loader(MSSQLScript::AlterFunction, m_functionName, m_schema)),
             newQueryMenuItem(), createScriptAsMenu(),
             actionItem("Drop function", "confirmDropFunction:", shared_from_this())}};
}

KNMenuItem MSSQLDatabaseTreeEntryFunction::createScriptAsMenu() const
{
    const QString title = QStringLiteral("Script as");
    const auto script = [&](const char *text, MSSQLScript kind) {
        return createScriptToOptionsMenu(text, MSSQLScriptLoaders::loader(kind, m_functionName, m_schema));
    };
    return KNMenuItem::withSubmenu(
        title, {title,
                {script("CREATE to", MSSQLScript::CreateFunction),
                 script("ALTER to", MSSQLScript::AlterFunction), script("DROP to", MSSQLScript::DropFunction),
                 script("DROP and CREATE to", MSSQLScript::DropAndCreateFunction)}});
}
