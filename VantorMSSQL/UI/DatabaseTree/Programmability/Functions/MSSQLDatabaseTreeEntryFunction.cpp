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

MSSQLScriptSubject MSSQLDatabaseTreeEntryFunction::scriptSubject() const
{
    return {QStringLiteral("FUNCTION"), m_schema, m_functionName, databaseConnectionDetails()};
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryFunction::propertiesLoader() const
{
    return MSSQLTreeCatalog::objectProperties(*this, m_schema, m_functionName);
}

KNMenu MSSQLDatabaseTreeEntryFunction::menu()
{
    return {
        QStringLiteral("Test"),
        {actionItem("New function", "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewFunction")),
         actionItem("Modify", "addQueryTabWithQueryLoader:",
                    scriptSubject().script<MSSQLScriptAlterFunctionQueryLoader>(m_functionName, m_schema)),
         newQueryMenuItem(), createScriptAsMenu(),
         actionItem("Drop function", "confirmDropFunction:", shared_from_this())}};
}

KNMenu MSSQLDatabaseTreeEntryFunction::additionalMenu()
{
    return {{}, {actionItem("Generate Scripts…", "generateScripts:", shared_from_this())}};
}

KNMenuItem MSSQLDatabaseTreeEntryFunction::createScriptAsMenu() const
{
    return scriptAsMenuItem(
        {{"CREATE to",
          scriptSubject().creation<MSSQLScriptCreateFunctionQueryLoader>(m_functionName, m_schema)},
         {"ALTER to", scriptSubject().script<MSSQLScriptAlterFunctionQueryLoader>(m_functionName, m_schema)},
         {"DROP to", scriptSubject().script<MSSQLScriptDropFunctionQueryLoader>(m_functionName, m_schema)},
         {"DROP and CREATE to",
          scriptSubject().creation<MSSQLScriptDropAndCreateFunctionQueryLoader>(m_functionName, m_schema)}});
}
