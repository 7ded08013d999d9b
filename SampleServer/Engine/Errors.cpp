#include "Engine/Errors.h"
#include "Types/TypeTraits.h"

namespace SampleServer::Errors {

namespace {

std::string quoted(std::string_view text)
{
    return '\'' + std::string(text) + '\'';
}

EngineError syntax(int number, int state, std::string text)
{
    return {number, 15, state, std::move(text), ErrorEffect::EndsBatch};
}

EngineError binding(int number, int severity, std::string text)
{
    return {number, severity, 1, std::move(text), ErrorEffect::EndsBatch};
}

} // namespace

EngineError syntaxNear(std::string_view token)
{
    return syntax(102, 1, "Incorrect syntax near " + quoted(token) + '.');
}

EngineError syntaxNearKeyword(std::string_view keyword)
{
    return syntax(156, 1, "Incorrect syntax near the keyword " + quoted(keyword) + '.');
}

EngineError unclosedQuote(std::string_view text)
{
    return syntax(105, 1, "Unclosed quotation mark after the character string " + quoted(text) + '.');
}

EngineError missingEndComment()
{
    return syntax(113, 1, "Missing end comment mark '*/'.");
}

EngineError identifierTooLong(std::string_view name)
{
    return syntax(103, 4,
                  "The identifier that starts with " + quoted(name) + " is too long. Maximum length is 128.");
}

EngineError emptyIdentifier()
{
    return syntax(
        1038, 4,
        "An object or column name is missing or empty. For SELECT INTO statements, verify each column has a "
        "name. For other statements, look for empty alias names. Aliases defined as \"\" or [] are not "
        "allowed. Change the alias to a valid name.");
}

EngineError mustDeclareVariable(std::string_view name, int state)
{
    return syntax(137, state, "Must declare the scalar variable \"" + std::string(name) + "\".");
}

EngineError variableAlreadyDeclared(std::string_view name)
{
    return syntax(
        134, 2,
        "The variable name " + quoted(name) +
            " has already been declared. Variable names must be unique within a query batch or stored "
            "procedure.");
}

EngineError nonBooleanCondition(std::string_view token)
{
    return syntax(
        4145, 1,
        "An expression of non-boolean type specified in a context where a condition is expected, near " +
            quoted(token) + '.');
}

EngineError constraintFailed(const EngineError &error, int state)
{
    return error.followedBy(1750, state, "Could not create constraint or index. See previous errors.");
}

EngineError notSupported(std::string_view construct)
{
    return binding(40000, 16, "The sample server does not support " + std::string(construct) + '.');
}

EngineError invalidObject(std::string_view name)
{
    EngineError error = binding(208, 16, "Invalid object name " + quoted(name) + '.');
    error.message.state = name.starts_with('#') ? 0 : 1;
    return error;
}

EngineError invalidColumn(std::string_view name)
{
    return binding(207, 16, "Invalid column name " + quoted(name) + '.');
}

EngineError ambiguousColumn(std::string_view name)
{
    return binding(209, 16, "Ambiguous column name " + quoted(name) + '.');
}

EngineError unboundIdentifier(std::string_view name)
{
    return binding(4104, 16, "The multi-part identifier \"" + std::string(name) + "\" could not be bound.");
}

EngineError unknownFunction(std::string_view name)
{
    return {195, 15, 10, quoted(name) + " is not a recognized built-in function name.",
            ErrorEffect::EndsBatch};
}

EngineError argumentCount(std::string_view function, int count)
{
    return syntax(174, 1,
                  "The " + std::string(function) + " function requires " + std::to_string(count) +
                      " argument(s).");
}

EngineError unknownType(std::string_view name, int position)
{
    return {2715, 16, 6,
            "Column, parameter, or variable #" + std::to_string(position) + ": Cannot find data type " +
                std::string(name) + '.',
            ErrorEffect::EndsBatch};
}

EngineError operandTypeClash(const SqlType &from, const SqlType &to)
{
    return {206, 16, 2,
            std::string("Operand type clash: ") + baseTypeName(from.id) + " is incompatible with " +
                baseTypeName(to.id),
            ErrorEffect::EndsBatch};
}

EngineError invalidOperand(std::string_view type, std::string_view operation)
{
    return binding(8117, 16,
                   "Operand data type " + std::string(type) + " is invalid for " + std::string(operation) +
                       " operator.");
}

EngineError implicitConversion(TypeId from, TypeId to)
{
    return {257, 16, 3,
            std::string("Implicit conversion from data type ") + messageTypeName(from) + " to " +
                messageTypeName(to) + " is not allowed. Use the CONVERT function to run this query.",
            ErrorEffect::EndsBatch};
}

EngineError explicitConversion(TypeId from, TypeId to)
{
    return {529, 16, 2,
            std::string("Explicit conversion from data type ") + messageTypeName(from) + " to " +
                messageTypeName(to) + " is not allowed.",
            ErrorEffect::EndsBatch};
}

EngineError outOfMemory()
{
    return {701, 17, 123, "There is insufficient system memory in resource pool 'default' to run this query.",
            ErrorEffect::EndsBatch};
}

void requireRoom(std::size_t bytes)
{
    if (bytes > LargestValue)
        throw outOfMemory();
}

EngineError nameTaken(const std::string &name)
{
    return {2714, 16, 6, "There is already an object named '" + name + "' in the database.",
            ErrorEffect::EndsBatch};
}

EngineError noSuchDatabase(const std::string &name)
{
    return {911, 16, 1,
            "Database '" + name + "' does not exist. Make sure that the name is entered correctly.",
            ErrorEffect::EndsBatch};
}

EngineError stackLimit()
{
    return {8631, 17, 1,
            "Internal error: Server stack limit has been reached. Please look for potentially deep nesting "
            "in your "
            "query, and try to simplify it.",
            ErrorEffect::EndsBatch};
}

EngineError divideByZero()
{
    return {8134, 16, 1, "Divide by zero error encountered."};
}

EngineError overflow(std::string_view from, std::string_view to, int state)
{
    return {8115, 16, state,
            "Arithmetic overflow error converting " + std::string(from) + " to data type " + std::string(to) +
                '.'};
}

EngineError conversionFailed(std::string_view from, std::string_view value, std::string_view to)
{
    return {245, 16, 1,
            "Conversion failed when converting the " + std::string(from) + " value " + quoted(value) +
                " to data type " + std::string(to) + '.',
            ErrorEffect::RollsBack};
}

EngineError dataTypeConversion(std::string_view from, std::string_view to)
{
    return {8114, 16, 5, "Error converting data type " + std::string(from) + " to " + std::string(to) + '.',
            ErrorEffect::RollsBack};
}

} // namespace SampleServer::Errors
