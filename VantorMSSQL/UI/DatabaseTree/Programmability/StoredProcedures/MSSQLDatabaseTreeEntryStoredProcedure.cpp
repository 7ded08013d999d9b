#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Scripts/MSSQLScriptAlterStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedureParameter.h"

MSSQLDatabaseTreeEntryStoredProcedure::MSSQLDatabaseTreeEntryStoredProcedure(const QString &displayName,
                                                                             const QString &schema,
                                                                             const QString &procedureName)
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadParameterProcedures",
          .retry = Retry::Never,
          .protocol = {.finishes = Finishes::OnBackgroundThread},
      })
    , m_schema(schema)
    , m_procedureName(procedureName)
{
    setDisplayName(displayName);
}

void MSSQLDatabaseTreeEntryStoredProcedure::removeChild(const Ptr &child)
{
    removeChildOrFail(
        child, "Procedure does not exist in parent.",
        "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure");
}

QString MSSQLDatabaseTreeEntryStoredProcedure::catalogQuery()
{
    return MSSQLTreeCatalog::text(
        *this, "List_ParametersForStoredProcedure",
        {{QStringLiteral("SCHEMA"), m_schema}, {QStringLiteral("PROCEDURE_NAME"), m_procedureName}});
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntryStoredProcedure::entryForRow(const DatabaseResultSet &row)
{
    auto parameter = make<MSSQLDatabaseTreeEntryStoredProcedureParameter>();
    parameter->setDisplayName(row.stringForColumnIndex(0));
    parameter->setDetails(row.stringForColumnIndex(1));
    return parameter;
}

MSSQLScriptSubject MSSQLDatabaseTreeEntryStoredProcedure::scriptSubject() const
{
    return {QStringLiteral("PROCEDURE"), m_schema, m_procedureName, databaseConnectionDetails()};
}

KNMenu MSSQLDatabaseTreeEntryStoredProcedure::menu()
{
    const QString escapedName = MSSQLObjectPath::quoted({m_schema, m_procedureName});
    return {QStringLiteral("Test"),
            {actionItem("New Stored Procedure",
                        "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewStoredProcedure")),
             actionItem("Modify", "addQueryTabWithQueryLoader:",
                        scriptSubject().script<MSSQLScriptAlterStoredProcedureQueryLoader>(m_procedureName,
                                                                                           m_schema)),
             actionItem("Execute stored procedure", "executeStoredProcedure:", escapedName),
             newQueryMenuItem(), createScriptAsMenu(),
             actionItem("Drop procedure", "confirmDropProcedure:", shared_from_this())}};
}

KNMenuItem MSSQLDatabaseTreeEntryStoredProcedure::createScriptAsMenu() const
{
    return scriptAsMenuItem(
        {{"CREATE to",
          scriptSubject().script<MSSQLScriptCreateStoredProcedureQueryLoader>(m_procedureName, m_schema)},
         {"ALTER to",
          scriptSubject().script<MSSQLScriptAlterStoredProcedureQueryLoader>(m_procedureName, m_schema)},
         {"DROP to",
          scriptSubject().script<MSSQLScriptDropStoredProcedureQueryLoader>(m_procedureName, m_schema)},
         {"DROP and CREATE to", scriptSubject().script<MSSQLScriptDropAndCreateStoredProcedureQueryLoader>(
                                    m_procedureName, m_schema)}});
}
