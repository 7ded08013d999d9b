#include "Engine/Catalog/Catalog.h"
#include "Engine/Catalog/CatalogTypes.h"
#include "Engine/Functions/FunctionResults.h"
#include "Engine/Functions/FunctionTable.h"
#include "Engine/Parse/NameText.h"
#include "Types/Collation.h"
#include "Types/Text.h"

// Schemas, types and databases by name and id.
namespace SampleServer::Functions {

using namespace Bound;

namespace {

Value schemaName(EvaluationContext &context, const Operation &, Arguments a)
{
    if (a.empty())
        return std::string("dbo");
    const auto schema =
        isNull(a[0]) ? std::nullopt : context.findDatabase({})->findSchema(static_cast<int>(number(a[0])));
    return schema ? Value(schema->name) : Value();
}

Value schemaId(EvaluationContext &context, const Operation &, Arguments a)
{
    if (a.empty())
        return std::int64_t{1};
    const auto schema = isNull(a[0]) ? std::nullopt : context.findDatabase({})->findSchema(text(a[0]));
    return schema ? Value(std::int64_t{schema->id}) : Value();
}

Value typeName(EvaluationContext &context, const Operation &, Arguments a)
{
    for (const SystemType &type : systemTypes())
        if (type.userId == number(a[0]))
            return std::string(type.name);
    for (const UserTypePtr &type : context.findDatabase({})->types())
        if (type->id == number(a[0]))
            return type->name;
    return number(a[0]) == 243 ? Value(std::string("table type")) : Value();
}

Value typeId(EvaluationContext &context, const Operation &, Arguments a)
{
    const Ast::ObjectName name = nameFromText(text(a[0]));
    if (name.parts.empty())
        return {};
    const UserTypePtr user = context.findDatabase({})->findType(
        name.qualifier(1).empty() ? "dbo" : name.qualifier(1), name.object());
    if (user)
        return std::int64_t{user->id};
    for (const SystemType &type : systemTypes())
        if (equalsIgnoringAsciiCase(type.name, name.object()))
            return std::int64_t{type.userId};
    return {};
}

Value databaseProperty(EvaluationContext &context, const Operation &, Arguments a)
{
    if (!context.findDatabase(text(a[0])))
        return {};
    const std::string property = asciiUpper(text(a[1]));
    const auto word = [](const char *value) { return variant(SysName, std::string(value)); };
    const auto integer = [](std::int64_t value) { return variant(IntType, value); };
    if (property == "COLLATION")
        return word("SQL_Latin1_General_CP1_CI_AS");
    if (property == "STATUS")
        return word("ONLINE");
    if (property == "RECOVERY")
        return word("SIMPLE");
    if (property == "UPDATEABILITY")
        return word("READ_WRITE");
    if (property == "USERACCESS")
        return word("MULTI_USER");
    if (property == "EDITION" || property == "SERVICEOBJECTIVE")
        return context.edition == Edition::Azure
                   ? word(property == "EDITION" ? "GeneralPurpose" : "GP_S_Gen5_1")
                   : Value();
    if (property == "VERSION")
        return integer(context.edition == Edition::Sql2000   ? 539
                       : context.edition == Edition::Sql2008 ? 655
                                                             : 957);
    if (property == "SQLSORTORDER")
        return integer(52);
    if (property == "LCID")
        return integer(1033);
    if (property.starts_with("IS"))
        return integer(property == "ISAUTOCREATESTATISTICS" || property == "ISAUTOUPDATESTATISTICS");
    return {};
}

Value hasDatabaseAccess(EvaluationContext &context, const Operation &, Arguments a)
{
    return context.findDatabase(text(a[0])) ? truth(true) : Value();
}

Value parseName(EvaluationContext &, const Operation &, Arguments a)
{
    const Ast::ObjectName name = nameFromText(text(a[0]));
    const std::int64_t part = number(a[1]);
    if (name.parts.empty() || part < 1 || part > static_cast<std::int64_t>(name.parts.size()))
        return {};
    const std::string &found = name.parts[name.parts.size() - static_cast<std::size_t>(part)];
    return found.empty() ? Value() : Value(found);
}

constexpr Builtin namesBuiltins[] = {
    {"DATABASEPROPERTY", 2, 2, "tt", variantResult, databaseProperty},
    {"DATABASEPROPERTYEX", 2, 2, "tt", variantResult, databaseProperty},
    {"HAS_DBACCESS", 1, 1, "t", intResult, hasDatabaseAccess, true, false},
    {"PARSENAME", 2, 2, "ti", nameResult, parseName},
    {"SCHEMA_ID", 0, 1, "t", intResult, schemaId, false},
    {"SCHEMA_NAME", 0, 1, "i", nameResult, schemaName, false, false},
    {"TYPE_ID", 1, 1, "t", intResult, typeId},
    {"TYPE_NAME", 1, 1, "i", nameResult, typeName, true, false},
};

} // namespace

std::span<const Builtin> nameFunctions()
{
    return namesBuiltins;
}

} // namespace SampleServer::Functions
