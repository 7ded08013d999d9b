#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntryFunction.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptAlterFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropFunctionQueryLoader.h"
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
                        std::make_shared<MSSQLScriptAlterFunctionQueryLoader>(m_functionName, m_schema)),
             newQueryMenuItem(), createScriptAsMenu(),
             actionItem("Drop function", "confirmDropFunction:", shared_from_this())}};
}

KNMenuItem MSSQLDatabaseTreeEntryFunction::createScriptAsMenu() const
{
    const QString qualifiedName = KNFormat("%@.%@", m_schema, m_functionName);
    return scriptAsMenuItem(
        {{"CREATE to", std::make_shared<MSSQLScriptCreateFunctionQueryLoader>(qualifiedName)},
         {"ALTER to", std::make_shared<MSSQLScriptAlterFunctionQueryLoader>(m_functionName, m_schema)},
         {"DROP to", std::make_shared<MSSQLScriptDropFunctionQueryLoader>(m_functionName, m_schema)},
         {"DROP and CREATE to",
          std::make_shared<MSSQLScriptDropAndCreateFunctionQueryLoader>(qualifiedName)}});
}
