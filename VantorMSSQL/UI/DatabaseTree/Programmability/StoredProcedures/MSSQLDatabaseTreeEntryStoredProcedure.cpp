#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"
#include "Scripts/MSSQLScriptLoaders.h"
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
    return MSSQLTreeCatalog::filled(MSSQLTreeCatalog::text(*this, "List_ParametersForStoredProcedure"),
                                    {{"{SCHEMA}", m_schema}, {"{PROCEDURE_NAME}", m_procedureName}});
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntryStoredProcedure::entryForRow(const DatabaseResultSet &row)
{
    auto parameter = make<MSSQLDatabaseTreeEntryStoredProcedureParameter>();
    parameter->setDisplayName(row.stringForColumnIndex(0));
    parameter->setDetails(row.stringForColumnIndex(1));
    return parameter;
}

KNMenu MSSQLDatabaseTreeEntryStoredProcedure::menu()
{
    const QString escapedName = KNFormat("%@.%@", MSSQLClient::escapeTableNameIfRequired(m_schema),
                                         MSSQLClient::escapeTableNameIfRequired(m_procedureName));
    return {
        QStringLiteral("Test"),
        {actionItem("New Stored Procedure",
                    "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewStoredProcedure")),
         actionItem("Modify", "addQueryTabWithQueryLoader:",
                    MSSQLScriptLoaders::loader(MSSQLScript::AlterStoredProcedure, m_procedureName, m_schema)),
         actionItem("Execute stored procedure", "executeStoredProcedure:", escapedName), newQueryMenuItem(),
         createScriptAsMenu(), actionItem("Drop procedure", "confirmDropProcedure:", shared_from_this())}};
}

KNMenuItem MSSQLDatabaseTreeEntryStoredProcedure::createScriptAsMenu() const
{
    const QString title = QStringLiteral("Script as");
    const auto script = [&](const char *text, MSSQLScript kind) {
        return createScriptToOptionsMenu(text, MSSQLScriptLoaders::loader(kind, m_procedureName, m_schema));
    };
    return KNMenuItem::withSubmenu(
        title, {title,
                {script("CREATE to", MSSQLScript::CreateStoredProcedure),
                 script("ALTER to", MSSQLScript::AlterStoredProcedure),
                 script("DROP to", MSSQLScript::DropStoredProcedure),
                 script("DROP and CREATE to", MSSQLScript::DropAndCreateStoredProcedure)}});
}
