#include "Engine/Bind/Binder.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/FunctionResults.h"
#include "Engine/Functions/FunctionTable.h"
#include "Types/Guid.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

namespace SampleServer::Functions {

using namespace Bound;

namespace {

SqlType guidResult(const ArgumentList &)
{
    return {TypeId::UniqueIdentifier, 0, 0, 0};
}

Value newIdentifier(EvaluationContext &, const Operation &, Arguments)
{
    return newGuid();
}

Value databaseName(EvaluationContext &context, const Operation &, Arguments a)
{
    if (a.empty())
        return context.database;
    if (isNull(a[0]))
        return {};
    const auto name = context.databaseName(std::get<std::int64_t>(a[0]));
    return name ? Value(*name) : Value();
}

Value databaseId(EvaluationContext &context, const Operation &, Arguments a)
{
    if (!a.empty() && isNull(a[0]))
        return {};
    const auto id = context.databaseId(a.empty() ? std::string() : std::get<std::string>(a[0]));
    return id ? Value(*id) : Value();
}

Value loginName(EvaluationContext &context, const Operation &, Arguments)
{
    return context.loginName;
}
/// Every sid is that of the one account.
Value loginOfSid(EvaluationContext &context, const Operation &, Arguments a)
{
    return a.empty() || !isNull(a[0]) ? Value(context.loginName) : Value();
}
Value userName(EvaluationContext &, const Operation &, Arguments a)
{
    return a.empty() || std::get<std::int64_t>(a[0]) == 1 ? Value(std::string("dbo")) : Value();
}
Value hostName(EvaluationContext &context, const Operation &, Arguments)
{
    return context.hostName;
}
Value applicationName(EvaluationContext &context, const Operation &, Arguments)
{
    return context.applicationName;
}

Value scopeIdentity(EvaluationContext &context, const Operation &, Arguments)
{
    return context.scopeIdentity ? Value(*context.scopeIdentity) : Value();
}

SqlType bigIntResult(const ArgumentList &)
{
    return {TypeId::BigInt, 0, 0, 0};
}

Value rowCountBig(EvaluationContext &context, const Operation &, Arguments)
{
    return context.rowCount;
}

/// The number after "Microsoft SQL Server ... - " in the banner: "16.0.1000.6".
std::string productVersion(const std::string &banner)
{
    const std::size_t dash = banner.find(" - ");
    if (dash == std::string::npos)
        return {};
    const std::size_t start = dash + 3;
    return banner.substr(start, banner.find_first_not_of("0123456789.", start) - start);
}

Value serverProperty(EvaluationContext &context, const Operation &, Arguments a)
{
    const std::string name = asciiUpper(std::get<std::string>(a[0]));
    const auto text = [](std::string value) { return variant(SysName, std::move(value)); };
    const auto number = [](std::int64_t value) { return variant(IntType, value); };
    const std::string version = productVersion(context.versionBanner);
    if (name == "SERVERNAME" || name == "MACHINENAME")
        return text(context.serverName);
    if (name == "PRODUCTVERSION")
        return text(version);
    if (name == "PRODUCTMAJORVERSION")
        return text(version.substr(0, version.find('.')));
    if (name == "PRODUCTLEVEL")
        return text("RTM");
    if (name == "EDITION")
        return text(context.edition == Edition::Azure     ? "SQL Azure"
                    : context.edition == Edition::Sql2000 ? "Developer Edition"
                                                          : "Developer Edition (64-bit)");
    if (name == "ENGINEEDITION")
        return number(context.edition == Edition::Azure ? 5 : 3);
    if (name == "COLLATION")
        return text("SQL_Latin1_General_CP1_CI_AS");
    if (name == "ISCLUSTERED" || name == "ISINTEGRATEDSECURITYONLY" || name == "ISFULLTEXTINSTALLED" ||
        name == "ISHADRENABLED")
        return number(0);
    return {};
}

Value isNumericText(EvaluationContext &, const Operation &operation, Arguments a)
{
    if (isNull(a[0]))
        return std::int64_t{0};
    if (isNumeric(operation.arguments[0].id))
        return std::int64_t{1};
    if (!isText(operation.arguments[0].id))
        return std::int64_t{0};
    const auto converts = [&](TypeId id) {
        try {
            convertValue(a[0], operation.arguments[0], {id, 0, 0, 0});
            return true;
        } catch (const EngineError &) {
            return false;
        }
    };
    const std::string digits(trimmed(std::get<std::string>(a[0])));
    if (digits.size() == 1 && std::string_view("+-.,$").find(digits[0]) != std::string_view::npos)
        return std::int64_t{1}; // taken for the start of a number
    return std::int64_t{!digits.empty() && (converts(TypeId::Float) || converts(TypeId::Money))};
}

Value variantProperty(EvaluationContext &, const Operation &operation, Arguments a)
{
    SqlType type = operation.arguments[0];
    if (type.id == TypeId::SqlVariant)
        type = std::get<std::shared_ptr<const VariantValue>>(a[0])->type;
    const std::string name = asciiUpper(std::get<std::string>(a[1]));
    const SqlType of = isExactNumeric(type.id) ? asDecimalType(type) : type;
    if (name == "BASETYPE")
        return variant(SysName, messageTypeName(type.id));
    if (name == "PRECISION")
        return variant(IntType, std::int64_t{of.precision});
    if (name == "SCALE")
        return variant(IntType, std::int64_t{of.scale});
    if (name == "MAXLENGTH")
        return variant(IntType, std::int64_t{isUnicodeText(type.id) ? type.length * 2 : type.length});
    if (name == "COLLATION")
        return isText(type.id) ? variant(SysName, std::string("SQL_Latin1_General_CP1_CI_AS")) : Value();
    return {};
}

constexpr Builtin systemBuiltins[] = {
    {"APP_NAME", 0, 0, "a", nameResult, applicationName},
    {"CURRENT_USER", 0, 0, "a", nameResult, userName},
    {"DB_ID", 0, 1, "t", smallIntResult, databaseId, false},
    {"DB_NAME", 0, 1, "i", nameResult, databaseName, false},
    {"HOST_NAME", 0, 0, "a", nameResult, hostName},
    {"ISNUMERIC", 1, 1, "a", intResult, isNumericText, false},
    {"IS_MEMBER", 1, 1, "t", intResult, yes},
    {"IS_SRVROLEMEMBER", 1, 2, "t", intResult, yes},
    {"NEWID", 0, 0, "a", guidResult, newIdentifier, true, false},
    {"ORIGINAL_LOGIN", 0, 0, "a", nameResult, loginName},
    {"ROWCOUNT_BIG", 0, 0, "a", bigIntResult, rowCountBig},
    {"SCOPE_IDENTITY", 0, 0, "a", identityResult, scopeIdentity},
    {"SERVERPROPERTY", 1, 1, "t", variantResult, serverProperty},
    {"SESSION_USER", 0, 0, "a", nameResult, userName},
    {"SQL_VARIANT_PROPERTY", 2, 2, "at", variantResult, variantProperty},
    {"SUSER_NAME", 0, 0, "a", nameResult, loginName},
    {"SUSER_SNAME", 0, 1, "a", nameResult, loginOfSid},
    {"SYSTEM_USER", 0, 0, "a", nameResult, loginName},
    {"USER", 0, 0, "a", nameResult, userName},
    {"USER_NAME", 0, 1, "i", nameResult, userName},
};

} // namespace

std::span<const Builtin> systemFunctions()
{
    return systemBuiltins;
}

ExpressionPtr bindGlobalVariable(Binder &binder, const std::string &name)
{
    const EvaluationContext &context = binder.context();
    const std::string upper = asciiUpper(name);
    const auto integer = [](std::int64_t value, TypeId id = TypeId::Int) {
        return Binder::constant({id, 0, 0, 0}, value);
    };
    const auto text = [](const std::string &value, TypeId id, int length) {
        return Binder::constant({id, length, 0, 0}, value);
    };
    if (upper == "@@ROWCOUNT")
        return integer(context.rowCount);
    if (upper == "@@ERROR")
        return integer(context.lastError);
    if (upper == "@@TRANCOUNT")
        return integer(context.transactionCount);
    if (upper == "@@SPID")
        return integer(context.spid, TypeId::SmallInt);
    if (upper == "@@VERSION")
        return text(context.versionBanner, TypeId::NVarChar, 300);
    if (upper == "@@SERVERNAME")
        return text(context.serverName, TypeId::NVarChar, 128);
    if (upper == "@@SERVICENAME")
        return text("MSSQLSERVER", TypeId::NVarChar, 128);
    if (upper == "@@LANGUAGE")
        return text("us_english", TypeId::NVarChar, 128);
    if (upper == "@@LANGID")
        return integer(0, TypeId::SmallInt);
    if (upper == "@@TEXTSIZE")
        return integer(context.textSize);
    if (upper == "@@DATEFIRST")
        return integer(context.firstWeekday, TypeId::TinyInt);
    if (upper == "@@MAX_PRECISION")
        return integer(Decimal::MaxDigits, TypeId::TinyInt);
    if (upper == "@@MICROSOFTVERSION")
        return integer(0x10000000 + 1000);
    if (upper == "@@OPTIONS")
        return integer(static_cast<std::int64_t>(context.optionBits));
    if (upper == "@@NESTLEVEL")
        return integer(context.nestingLevel);
    if (upper == "@@PROCID")
        return integer(context.procedureId);
    if (upper == "@@CPU_BUSY")
        return integer(0);
    if (upper == "@@IDENTITY")
        return Binder::constant({TypeId::Decimal, 0, 38, 0},
                                context.lastIdentity ? Value(*context.lastIdentity) : Value());
    throw Errors::mustDeclareVariable(name);
}

} // namespace SampleServer::Functions
