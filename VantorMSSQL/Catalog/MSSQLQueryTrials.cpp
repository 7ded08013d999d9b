#include "Catalog/MSSQLQueryTrials.h"

namespace {

constexpr QLatin1String tables("DatabaseTree_ListTables");                       // id, schema, name
constexpr QLatin1String views("List_ViewsInDatabase_NonSystem");                 // id, schema, name
constexpr QLatin1String procedures("List_StoredProceduresInDatabase_NonSystem"); // schema, name
constexpr QLatin1String functions("List_FunctionsByTypeInDatabase_NonSystem");   // schema, name
constexpr QLatin1String types("List_UserTypesByTypeInDatabase_NonSystem");       // schema, name

KNQueryTrial trial(const char *title)
{
    return {QString::fromLatin1(title), {}, {}};
}

KNQueryTrial trialOf(QLatin1String objects, const char *title,
                     std::initializer_list<std::pair<const char *, const char *>> values)
{
    KNQueryTrial result{QString::fromLatin1(title), {}, objects};
    for (const auto &[placeholder, value] : values)
        result.values.insert(QString::fromLatin1(placeholder), QString::fromLatin1(value));
    return result;
}

/// A trial of a query with an optional clause.
KNQueryTrial trialOfAll(QLatin1String title)
{
    return {title, {{QStringLiteral("EXTRA_WHERE_CLAUSE"), QString()}}, {}};
}

} // namespace

QList<KNQueryTrial> MSSQLQueryTrials::all()
{
    return {
        trial("DatabaseTree_ServerVersion"),
        trial("General_FindDefaultUserSchema"),
        trial("General_ListDatabases"),
        trial("IsSQLServerAgentAvailable"),
        trial("List_AgentJobs"),
        trial("List_Federations"),
        trial("List_ServerPrincipals"),
        trial("Session_Options"),
        trial("List_Sessions"),
        trial("Properties_Server"),
        trial("Properties_Database"),
        trial("List_DatabasePrincipals"),

        trial("DatabaseTree_ListTables"),
        trialOf(tables, "ColumnsForTable", {{"SCHEMA_NAME", "{1}"}, {"TABLE_NAME", "{2}"}}),
        trialOf(tables, "List_IndexesForTable", {{"SCHEMA", "{1}"}, {"TABLE", "{2}"}}),
        trialOf(tables, "List_KeysForTable", {{"SCHEMA", "{1}"}, {"TABLE", "{2}"}}),
        trialOf(tables, "List_TriggersForTableWithDetails", {{"TABLE_SCHEMA", "{1}"}, {"TABLE_NAME", "{2}"}}),
        trialOf(tables, "List_IndexesAndColumnsForTable", {{"TABLE_SCHEMA", "{1}"}, {"TABLE_NAME", "{2}"}}),
        trialOf(tables, "List_IndexDefinitionsForTable", {{"TABLE_SCHEMA", "{1}"}, {"TABLE_NAME", "{2}"}}),
        trialOf(tables, "List_ForeignKeysForTable", {{"TABLE_SCHEMA", "{1}"}, {"TABLE_NAME", "{2}"}}),
        trialOf(tables, "List_PrimaryKeysForTable", {{"SCHEMA", "{1}"}, {"TABLE", "{2}"}}),
        trialOf(tables, "General_FindObject", {{"SCHEMA", "{1}"}, {"OBJECT", "{2}"}}),
        trialOf(tables, "Script_ColumnsAndKeys", {{"SCHEMA", "{1}"}, {"OBJECT", "{2}"}}),
        trial("List_TableRowCounts"),
        trial("List_Schemas"),
        trialOf(tables, "List_DependentsOfTable", {{"SCHEMA", "{1}"}, {"TABLE", "{2}"}}),
        trialOf(tables, "Properties_Object", {{"SCHEMA", "{1}"}, {"OBJECT", "{2}"}}),
        trialOf(tables, "Properties_Column", {{"SCHEMA", "{1}"}, {"OBJECT", "{2}"}, {"COLUMN", "id"}}),
        trialOf(tables, "Properties_Index", {{"SCHEMA", "{1}"}, {"OBJECT", "{2}"}, {"INDEX", "PK_{2}"}}),
        trialOf(tables, "Table_CreationQuery", {{"TABLE_SCHEMA", "{1}"}, {"TABLE_NAME", "{2}"}}),

        trial("List_ViewsInDatabase_NonSystem"),
        trialOf(views, "List_IndexesForView", {{"SCHEMA", "{1}"}, {"TABLE", "{2}"}}),
        trialOf(views, "View_AlterQuery", {{"SCHEMA", "{1}"}, {"VIEW", "{2}"}}),
        trialOf(views, "INDEX_CREATION_QUERY",
                {{"INDEX_SRC", "sys.views"},
                 {"INDEX_CLAUSE", "s.name = N'{1}' AND t.name = N'{2}'"},
                 {"VIEW_PATH", "{1}.{2}"}}),

        trial("List_StoredProceduresInDatabase_NonSystem"),
        trialOf(procedures, "List_ParametersForStoredProcedure",
                {{"SCHEMA", "{0}"}, {"PROCEDURE_NAME", "{1}"}}),
        trialOf(procedures, "Properties_Parameter",
                {{"SCHEMA", "{0}"}, {"OBJECT", "{1}"}, {"PARAMETER", "@id"}}),
        trialOf(procedures, "StoredProcedure_AlterQuery", {{"SCHEMA", "{0}"}, {"PROCEDURE_NAME", "{1}"}}),
        trialOf(procedures, "StoredProcedure_ScriptCreateQuery",
                {{"SCHEMA", "{0}"}, {"PROCEDURE_NAME", "{1}"}}),
        trialOfAll(functions),
        trialOf(functions, "Function_AlterQuery", {{"SCHEMA", "{0}"}, {"FUNCTION_NAME", "{1}"}}),
        trialOfAll(types),
        trialOf(types, "Properties_Type", {{"SCHEMA", "{0}"}, {"TYPE", "{1}"}}),
        trialOf(types, "UserDefinedDataType_CreationQuery", {{"SCHEMA", "{0}"}, {"TYPE", "{1}"}}),
        trialOf(types, "TableType_CreationQuery", {{"TABLE_SCHEMA", "{0}"}, {"TABLE_NAME", "{1}"}}),

        trial("List_EntriesForAutocomplete"),
        trial("List_SystemEntriesForAutocomplete"),
        trial("List_ObjectsForAutocomplete"),
        trial("List_MembersForAutocomplete"),
        trial("List_ForeignKeysForAutocomplete"),
        trial("List_ExportableDatabaseEntries"),
        trial("List_ObjectDependencies"),
        trial("List_ForeignKeysForScripts"),
        trialOf({}, "List_ExtendedPropertyStatements", {{"SCHEMA", ""}, {"OBJECT", ""}}),
        trial("List_PermissionStatements"),
        trialOf({}, "List_ViewTriggerStatements", {{"SCHEMA", ""}, {"OBJECT", ""}}),
        trial("List_SearchableDatabaseEntries"),
        trial("List_SearchableDatabaseEntries_Azure"),
        trial("List_TablesAndColumnsForImport"),

        trial("Script_ListConnections"),
        trial("Script_LongRunningQueries"),
        trial("Script_SPWHO3"),
        trial("Script_TableSizes"),
    };
}

QStringList MSSQLQueryTrials::notOnSQL2000()
{
    return {QStringLiteral("List_SearchableDatabaseEntries"),
            QStringLiteral("List_SearchableDatabaseEntries_Azure"), QStringLiteral("List_Federations"),
            QStringLiteral("TableType_CreationQuery")};
}

QStringList MSSQLQueryTrials::notOnAzure()
{
    return {QStringLiteral("IsSQLServerAgentAvailable"), QStringLiteral("List_AgentJobs"),
            QStringLiteral("List_SearchableDatabaseEntries"), QStringLiteral("List_ServerPrincipals")};
}
