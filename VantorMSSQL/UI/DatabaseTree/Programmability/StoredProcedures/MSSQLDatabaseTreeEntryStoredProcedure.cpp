#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Scripts/MSSQLScriptAlterStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptStatementQueryLoader.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedureParameter.h"

MSSQLDatabaseTreeEntryStoredProcedure::MSSQLDatabaseTreeEntryStoredProcedure(const QString &displayName,
                                                                             const QString &schema,
                                                                             const QString &procedureName)
    : MSSQLRecordSection(
          {
              .errorDomain = "mssqsql.databaseTree.loadParameterProcedures",
              .retry = Retry::Never,
              .protocol = {.finishes = Finishes::OnBackgroundThread},
          },
          schema, procedureName)
{
    setDisplayName(displayName);
}

void MSSQLDatabaseTreeEntryStoredProcedure::removeChild(const Ptr &child)
{
    removeChildOrFail(
        child, "Procedure does not exist in parent.",
        "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure");
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntryStoredProcedure::entryFor(const MSSQLParameterRecord &record)
{
    auto parameter = make<MSSQLDatabaseTreeEntryStoredProcedureParameter>(schema(), procedureName());
    parameter->setDisplayName(record.parameterName);
    parameter->setDetails(record.typeName);
    return parameter;
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryStoredProcedure::propertiesLoader() const
{
    return MSSQLTreeCatalog::objectProperties(*this, schema(), procedureName());
}

KNMenu MSSQLDatabaseTreeEntryStoredProcedure::additionalMenu()
{
    return {{},
            {scriptAsMenuItem({{"EXECUTE to", std::make_shared<MSSQLScriptStatementQueryLoader>(
                                                  MSSQLScriptStatementQueryLoader::Statement::Execute,
                                                  schema(), procedureName())}}),
             actionItem("Generate Scripts…", "generateScripts:", shared_from_this())}};
}

MSSQLScriptSubject MSSQLDatabaseTreeEntryStoredProcedure::scriptSubject() const
{
    return {QStringLiteral("PROCEDURE"), schema(), procedureName(), databaseConnectionDetails()};
}

KNMenu MSSQLDatabaseTreeEntryStoredProcedure::menu()
{
    const QString escapedName = MSSQLObjectPath::quoted({schema(), procedureName()});
    return {QStringLiteral("Test"),
            {actionItem("New Stored Procedure",
                        "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewStoredProcedure")),
             actionItem("Modify", "addQueryTabWithQueryLoader:",
                        scriptSubject().script<MSSQLScriptAlterStoredProcedureQueryLoader>(procedureName(),
                                                                                           schema())),
             actionItem("Execute stored procedure", "executeStoredProcedure:", escapedName),
             newQueryMenuItem(), createScriptAsMenu(),
             actionItem("Drop procedure", "confirmDropProcedure:", shared_from_this())}};
}

KNMenuItem MSSQLDatabaseTreeEntryStoredProcedure::createScriptAsMenu() const
{
    return scriptAsMenuItem(
        {{"CREATE to",
          scriptSubject().creation<MSSQLScriptCreateStoredProcedureQueryLoader>(procedureName(), schema())},
         {"ALTER to",
          scriptSubject().script<MSSQLScriptAlterStoredProcedureQueryLoader>(procedureName(), schema())},
         {"DROP to",
          scriptSubject().script<MSSQLScriptDropStoredProcedureQueryLoader>(procedureName(), schema())},
         {"DROP and CREATE to", scriptSubject().creation<MSSQLScriptDropAndCreateStoredProcedureQueryLoader>(
                                    procedureName(), schema())}});
}
