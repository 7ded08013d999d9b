#include "Engine/Functions/FunctionTable.h"
#include "Engine/Bind/Binder.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Functions.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>
#include <unordered_map>

namespace SampleServer::Functions {

using namespace Bound;

namespace {

EngineError wrongCount(const Builtin &function)
{
    if (function.least == function.most)
        return Errors::argumentCount(function.name == "ATN2" ? "atn2" : function.name, function.least);
    return {189, 15, 1,
            "The " + std::string(function.name) + " function requires " + std::to_string(function.least) +
                " to " + std::to_string(function.most) + " arguments.",
            ErrorEffect::EndsBatch};
}

/// SQL Server functions that this server does not support.
bool isElsewhere(std::string_view name)
{
    static constexpr std::string_view names[] = {"APPLOCK_MODE",
                                                 "APPLOCK_TEST",
                                                 "ASSEMBLYPROPERTY",
                                                 "BINARY_CHECKSUM",
                                                 "CERTENCODED",
                                                 "CERTPRIVATEKEY",
                                                 "CHECKSUM",
                                                 "CHECKSUM_AGG",
                                                 "COMPRESS",
                                                 "CONNECTIONPROPERTY",
                                                 "CONTEXT_INFO",
                                                 "CURRENT_REQUEST_ID",
                                                 "CURRENT_TIMEZONE",
                                                 "CURRENT_TRANSACTION_ID",
                                                 "CURSOR_STATUS",
                                                 "DATETRUNC",
                                                 "DATE_BUCKET",
                                                 "DECOMPRESS",
                                                 "DECRYPTBYKEY",
                                                 "ENCRYPTBYKEY",
                                                 "EVENTDATA",
                                                 "FILEGROUPPROPERTY",
                                                 "FILEGROUP_ID",
                                                 "FILE_ID",
                                                 "FILE_IDEX",
                                                 "FILE_NAME",
                                                 "FORMAT",
                                                 "FULLTEXTCATALOGPROPERTY",
                                                 "FULLTEXTSERVICEPROPERTY",
                                                 "GETANSINULL",
                                                 "GET_FILESTREAM_TRANSACTION_CONTEXT",
                                                 "GREATEST",
                                                 "GROUPING",
                                                 "GROUPING_ID",
                                                 "HASHBYTES",
                                                 "HOST_ID",
                                                 "ISJSON",
                                                 "JSON_ARRAY",
                                                 "JSON_MODIFY",
                                                 "JSON_OBJECT",
                                                 "JSON_PATH_EXISTS",
                                                 "JSON_QUERY",
                                                 "JSON_VALUE",
                                                 "LEAST",
                                                 "MIN_ACTIVE_ROWVERSION",
                                                 "NEWSEQUENTIALID",
                                                 "PERMISSIONS",
                                                 "PUBLISHINGSERVERNAME",
                                                 "PWDCOMPARE",
                                                 "PWDENCRYPT",
                                                 "SESSIONPROPERTY",
                                                 "SESSION_CONTEXT",
                                                 "STATS_DATE",
                                                 "STRING_ESCAPE",
                                                 "SUSER_ID",
                                                 "SUSER_SID",
                                                 "TEXTPTR",
                                                 "TEXTVALID",
                                                 "TRIGGER_NESTLEVEL",
                                                 "TYPEPROPERTY",
                                                 "USER_ID"};
    return std::binary_search(std::begin(names), std::end(names), name);
}

/// Converts the argument to the parameter's type.
ExpressionPtr adapted(Binder &binder, const ExpressionPtr &argument, char parameter)
{
    const TypeId id = argument->type.id;
    switch (parameter) {
    case 't':
        if (isNullLiteral(*argument))
            return Binder::null({TypeId::VarChar, 1, 0, 0});
        return isText(id) ? argument : binder.converted(argument, {TypeId::NVarChar, 4000, 0, 0});
    case 'i':
        return binder.converted(argument, {id == TypeId::BigInt ? TypeId::BigInt : TypeId::Int, 0, 0, 0});
    case 'f':
        return binder.converted(argument, {TypeId::Float, 0, 0, 0});
    case 'n':
        return isNumeric(id) ? argument : binder.converted(argument, {TypeId::Float, 0, 0, 0});
    case 'd':
        if (isDateTime(id))
            return argument;
        return binder.converted(argument, {isText(id) ? TypeId::DateTimeOffset : TypeId::DateTime, 0, 0,
                                           static_cast<std::uint8_t>(isText(id) ? 7 : 0)});
    default:
        return argument;
    }
}

} // namespace

const Builtin *findBuiltin(std::string_view name)
{
    static const auto index = [] {
        std::unordered_map<std::string_view, const Builtin *> byName;
        for (const auto &table :
             {stringFunctions(), textFunctions(), mathFunctions(), dateFunctions(), datePartFunctions(),
              systemFunctions(), sessionFunctions(), metadataFunctions(), nameFunctions()})
            for (const Builtin &function : table)
                byName.emplace(function.name, &function);
        return byName;
    }();
    const auto found = index.find(name);
    return found == index.end() ? nullptr : found->second;
}

bool isBuiltin(std::string_view name)
{
    return findBuiltin(name) || takesDatePart(std::string(name));
}

ExpressionPtr bindBuiltin(Binder &binder, const std::string &name, ArgumentList arguments)
{
    const Builtin *function = findBuiltin(asciiUpper(name));
    static constexpr std::string_view windowed[] = {"CUME_DIST",  "DENSE_RANK", "FIRST_VALUE", "LAG",
                                                    "LAST_VALUE", "LEAD",       "NTILE",       "PERCENT_RANK",
                                                    "RANK",       "ROW_NUMBER"};
    if (std::find(std::begin(windowed), std::end(windowed), asciiUpper(name)) != std::end(windowed))
        throw EngineError(10753, 15, 1, "The function '" + name + "' must have an OVER clause.",
                          ErrorEffect::EndsBatch);
    if (!function && isElsewhere(asciiUpper(name)))
        throw Errors::notSupported("the function " + asciiUpper(name));
    if (!function)
        throw Errors::unknownFunction(name);
    const int count = static_cast<int>(arguments.size());
    if (count < function->least || count > function->most)
        throw wrongCount(*function);
    for (std::size_t i = 0; i < arguments.size(); ++i)
        arguments[i] =
            adapted(binder, arguments[i], function->parameters[std::min(i, function->parameters.size() - 1)]);
    Operation operation;
    operation.function = function->function;
    operation.result = function->result(arguments);
    operation.nullPropagates = function->nullPropagates;
    operation.foldable = function->foldable;
    return binder.call(std::move(operation), std::move(arguments));
}

} // namespace SampleServer::Functions
