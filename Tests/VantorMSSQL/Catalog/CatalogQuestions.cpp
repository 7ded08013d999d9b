#include "VantorMSSQL/Catalog/CatalogQuestions.h"

#include "Foundation/KNFormat.h"

#include <tuple>

namespace {

CatalogQuestion question(const char *title,
                         std::initializer_list<std::pair<const char *, const char *>> values = {})
{
    CatalogQuestion result{QString::fromUtf8(title)};
    for (const auto &[placeholder, value] : values)
        result.values.insert(QString::fromUtf8(placeholder), QString::fromUtf8(value));
    return result;
}

CatalogQuestion varying(const char *title,
                        std::initializer_list<std::pair<const char *, const char *>> values = {})
{
    CatalogQuestion result = question(title, values);
    result.varies = true;
    return result;
}

QList<CatalogQuestion> serverQuestions()
{
    return {question("General_ListDatabases"),
            question("General_FindDefaultUserSchema"),
            varying("DatabaseTree_ServerVersion"),
            question("IsSQLServerAgentAvailable"),
            question("List_AgentJobs"),
            question("List_Federations"),
            question("List_SearchableDatabaseEntries"),
            question("List_SearchableDatabaseEntries_Azure"),
            question("List_ServerPrincipals"),
            question("List_DatabasePrincipals"),
            varying("Properties_Server"),
            varying("Properties_Database"),
            varying("Script_ListConnections"),
            varying("Script_LongRunningQueries"),
            varying("Session_Options"),
            varying("Script_SPWHO3"),
            varying("List_Sessions")};
}

/// What is asked of one table, by its schema and name.
QList<CatalogQuestion> questionsOf(const char *schema, const char *table)
{
    return {question("ColumnsForTable", {{"SCHEMA_NAME", schema}, {"TABLE_NAME", table}}),
            question("List_IndexesForTable", {{"SCHEMA", schema}, {"TABLE", table}}),
            question("List_KeysForTable", {{"SCHEMA", schema}, {"TABLE", table}}),
            question("List_TriggersForTableWithDetails", {{"TABLE_SCHEMA", schema}, {"TABLE_NAME", table}}),
            question("List_IndexesAndColumnsForTable", {{"TABLE_SCHEMA", schema}, {"TABLE_NAME", table}}),
            question("List_IndexDefinitionsForTable", {{"TABLE_SCHEMA", schema}, {"TABLE_NAME", table}}),
            question("List_ForeignKeysForTable", {{"TABLE_SCHEMA", schema}, {"TABLE_NAME", table}}),
            question("List_PrimaryKeysForTable", {{"SCHEMA", schema}, {"TABLE", table}}),
            question("List_DependentsOfTable", {{"SCHEMA", schema}, {"TABLE", table}}),
            varying("Properties_Object", {{"SCHEMA", schema}, {"OBJECT", table}}),
            question("Table_CreationQuery", {{"TABLE_SCHEMA", schema}, {"TABLE_NAME", table}}),
            question("Script_ColumnsAndKeys", {{"SCHEMA", schema}, {"OBJECT", table}})};
}

QList<CatalogQuestion> tableQuestions()
{
    QList<CatalogQuestion> questions{question("DatabaseTree_ListTables"), question("List_TableRowCounts"),
                                     question("List_Schemas")};
    for (const auto &[schema, table] : std::initializer_list<std::pair<const char *, const char *>>{
             {"dbo", "Orders"},      {"dbo", "OrderLines"},
             {"dbo", "AllTypes"},    {"dbo", "Customers"},
             {"dbo", "Products"},    {"dbo", "Settings"},
             {"sales", "Invoices"},  {"sales", "Shipments"},
             {"hr", "Absences"},     {"hr", "Salaries"},
             {"dbo", "it's"},        {"dbo", "bracket]ed"},
             {"dbo", "dotted.name"}, {"dbo", "Order Details, \"quoted\""},
             {"dbo", "gifts 🎁"},     {"sales", "Payments"},
             {"sales", "Events"},    {"sales", "Stores"},
             {"hr", "Employees"},    {"hr", "Documents"},
             {"hr", "NoSuchTable"}})
        questions += questionsOf(schema, table);
    for (const auto &[schema, table, column] :
         std::initializer_list<std::tuple<const char *, const char *, const char *>>{
             {"dbo", "Orders", "OrderID"},
             {"dbo", "Orders", "Status"},
             {"sales", "Invoices", "Gross"},
             {"dbo", "bracket]ed", "NoSuchColumn"}})
        questions +=
            question("Properties_Column", {{"SCHEMA", schema}, {"OBJECT", table}, {"COLUMN", column}});
    for (const auto &[schema, table, index] :
         std::initializer_list<std::tuple<const char *, const char *, const char *>>{
             {"dbo", "Orders", "PK_Orders"}, {"dbo", "Customers", "NoSuchIndex"}})
        questions += question("Properties_Index", {{"SCHEMA", schema}, {"OBJECT", table}, {"INDEX", index}});
    return questions;
}

QList<CatalogQuestion> moduleQuestions()
{
    QList<CatalogQuestion> questions{question("List_ViewsInDatabase_NonSystem"),
                                     question("List_StoredProceduresInDatabase_NonSystem")};
    for (const auto &[schema, view] : std::initializer_list<std::pair<const char *, const char *>>{
             {"sales", "OrderTotals"}, {"hr", "Staff, by department"}, {"dbo", "SecretPrices"}}) {
        questions += question("List_IndexesForView", {{"SCHEMA", schema}, {"TABLE", view}});
        questions += question("View_AlterQuery", {{"SCHEMA", schema}, {"VIEW", view}});
    }
    questions +=
        question("INDEX_CREATION_QUERY", {{"INDEX_SRC", "sys.views"},
                                          {"INDEX_CLAUSE", "t.object_id = OBJECT_ID('sales.OrderTotals')"},
                                          {"VIEW_PATH", "sales.OrderTotals"}});
    for (const auto &[schema, procedure] :
         std::initializer_list<std::pair<const char *, const char *>>{{"sales", "PlaceOrder"},
                                                                      {"sales", "AddLines"},
                                                                      {"dbo", "List things; \"all\" of them"},
                                                                      {"dbo", "SecretProcedure"},
                                                                      {"hr", "RaiseSalaries"}}) {
        for (const char *title : {"List_ParametersForStoredProcedure", "StoredProcedure_AlterQuery",
                                  "StoredProcedure_ScriptCreateQuery"})
            questions += question(title, {{"SCHEMA", schema}, {"PROCEDURE_NAME", procedure}});
    }
    for (const char *clause : {"", "AND DATA_TYPE = 'TABLE'", "AND DATA_TYPE != 'TABLE'"})
        questions += question("List_FunctionsByTypeInDatabase_NonSystem", {{"EXTRA_WHERE_CLAUSE", clause}});
    questions += question("Properties_Parameter",
                          {{"SCHEMA", "sales"}, {"OBJECT", "PlaceOrder"}, {"PARAMETER", "@CustomerID"}});
    questions += question("Properties_Type", {{"SCHEMA", "sales"}, {"TYPE", "PhoneNumber"}});
    questions += question("Function_AlterQuery", {{"SCHEMA", "sales"}, {"FUNCTION_NAME", "OrderTotal"}});
    questions += question("Function_AlterQuery", {{"SCHEMA", "hr"}, {"FUNCTION_NAME", "Subordinates"}});
    questions += question("List_UserTypesByTypeInDatabase_NonSystem", {{"EXTRA_WHERE_CLAUSE", ""}});
    questions += question("List_UserTypesByTypeInDatabase_NonSystem",
                          {{"EXTRA_WHERE_CLAUSE", "AND is_table_type = 0"}});
    questions += question("List_UserTypesByTypeInDatabase_NonSystem",
                          {{"EXTRA_WHERE_CLAUSE", "AND is_table_type = 1"}});
    questions +=
        question("UserDefinedDataType_CreationQuery", {{"SCHEMA", "sales"}, {"TYPE", "PhoneNumber"}});
    questions += question("UserDefinedDataType_CreationQuery", {{"SCHEMA", "dbo"}, {"TYPE", "Flag"}});
    for (const auto &[schema, object] :
         std::initializer_list<std::pair<const char *, const char *>>{{"", "Orders"},
                                                                      {"sales", "OrderTotals"},
                                                                      {"sales", "PlaceOrder"},
                                                                      {"dbo", "Orders_Audit"},
                                                                      {"sales", "Staff"},
                                                                      {"dbo", "Flag"},
                                                                      {"hr", "NoSuchObject"}})
        questions += question("General_FindObject", {{"SCHEMA", schema}, {"OBJECT", object}});
    questions += question("Script_ColumnsAndKeys", {{"SCHEMA", "hr"}, {"OBJECT", "RaiseSalaries"}});
    return questions;
}

QList<CatalogQuestion> databaseQuestions()
{
    QList<CatalogQuestion> questions{question("List_EntriesForAutocomplete"),
                                     question("List_ObjectsForAutocomplete"),
                                     varying("List_SystemEntriesForAutocomplete"),
                                     question("List_MembersForAutocomplete"),
                                     question("List_ForeignKeysForAutocomplete"),
                                     question("List_ExportableDatabaseEntries"),
                                     question("List_ObjectDependencies"),
                                     question("List_TablesAndColumnsForImport"),
                                     question("Script_TableSizes")};
    for (CatalogQuestion &question : questions)
        question.database = QStringLiteral("library");
    for (const char *const title : {"List_ForeignKeysForScripts", "List_PermissionStatements"})
        questions += question(title);
    for (const char *const title : {"List_ExtendedPropertyStatements", "List_ViewTriggerStatements"})
        questions += question(title, {{"SCHEMA", ""}, {"OBJECT", ""}});
    questions += question("List_ExtendedPropertyStatements", {{"SCHEMA", "dbo"}, {"OBJECT", "Customers"}});
    questions += question("List_ViewTriggerStatements", {{"SCHEMA", "sales"}, {"OBJECT", "CustomerOrders"}});
    questions += question("TableType_CreationQuery", {{"TABLE_SCHEMA", "sales"}, {"TABLE_NAME", "LineList"}});
    return questions;
}

} // namespace

QString CatalogQuestion::name() const
{
    QStringList parts;
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        parts.append(KNFormat("%@=%@", value.key(), *value));
    return parts.join(QLatin1Char(' '));
}

const QList<CatalogQuestion> &catalogQuestions()
{
    static const QList<CatalogQuestion> questions =
        serverQuestions() + tableQuestions() + moduleQuestions() + databaseQuestions();
    return questions;
}
