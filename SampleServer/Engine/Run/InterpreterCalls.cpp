#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Parse/NameText.h"
#include "Engine/Run/Interpreter.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

// Procedures and functions of the user's.
namespace SampleServer {

namespace {

std::int32_t statusOf(const Value &result)
{
    return isNull(result) ? 0 : static_cast<std::int32_t>(std::get<std::int64_t>(result));
}

TablePtr renamed(const Table &table, const std::string &name)
{
    auto copy = std::make_shared<Table>(table);
    copy->name = name;
    return copy;
}

} // namespace

std::int32_t Interpreter::call(const Ast::ObjectName &name, std::vector<ProcedureArgument> &arguments)
{
    requireReachable(name);
    const FoundObject found = name.parts.empty() ? FoundObject() : findObject(name);
    if (found.object && found.object->kind == ObjectKind::Procedure)
        return callModule(std::dynamic_pointer_cast<const Module>(found.object), found.database, arguments);
    if (found.object && found.object->kind == ObjectKind::ScalarFunction) {
        const auto module = std::dynamic_pointer_cast<const Module>(found.object);
        Frame frame;
        bindParameters(*module, arguments, frame);
        runFunction(*module, frame);
        return statusOf(frame.result);
    }
    if (const auto status = callSystemProcedure(name, arguments))
        return *status;
    throw EngineError(2812, 16, 62, "Could not find stored procedure '" + name.toString() + "'.");
}

void Interpreter::callProcedure(const std::string &name, std::span<const ProcedureArgument> arguments,
                                ResultSink &sink)
{
    std::vector<ProcedureArgument> values(arguments.begin(), arguments.end());
    std::int32_t status = 0;
    bool failed = false;
    runRequest(sink, name, [&] {
        try {
            status = call(nameFromText(name), values);
        } catch (EngineError &error) {
            failed = true;
            report(error, 1);
        }
    });
    sink.returnStatus(status);
    for (const ProcedureArgument &argument : values)
        if (argument.output)
            sink.returnValue(argument.name, argument.type, argument.value);
    StatementEnd end;
    end.error = failed;
    sink.endProcedure(end);
}

/// Declares the parameters as variables of the frame: the arguments by name or place, the others at their
/// defaults.
void Interpreter::bindParameters(const Module &module, std::vector<ProcedureArgument> &arguments,
                                 Frame &frame)
{
    std::vector<ProcedureArgument *> given(module.parameters.size());
    bool byName = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::size_t place = i;
        byName = byName || !arguments[i].name.empty();
        if (byName && arguments[i].name.empty())
            throw EngineError(
                119, 15, 1,
                "Must pass parameter number " + std::to_string(i + 1) +
                    " and subsequent parameters as '@name = value'. After the form '@name = value' "
                    "has been used, all subsequent parameters must be passed in the form '@name = "
                    "value'.",
                ErrorEffect::EndsBatch);
        if (byName) {
            place = 0;
            while (place < given.size() &&
                   foldedName(module.parameters[place].name) != foldedName(arguments[i].name))
                ++place;
            if (place == given.size())
                throw EngineError(8145, 16, 2,
                                  arguments[i].name + " is not a parameter for procedure " + module.name +
                                      '.');
        }
        if (place >= given.size())
            throw EngineError(8144, 16, 2,
                              "Procedure or function " + module.name + " has too many arguments specified.");
        if (arguments[i].output && !module.parameters[place].output)
            throw EngineError(
                8162, 16, 2,
                "The formal parameter \"" + module.parameters[place].name +
                    "\" was not declared as an OUTPUT parameter, but the actual parameter passed in "
                    "requested output.");
        given[place] = &arguments[i];
    }
    for (std::size_t i = 0; i < given.size(); ++i) {
        const ModuleParameter &parameter = module.parameters[i];
        if (parameter.userType && parameter.userType->table) {
            bindTableParameter(parameter, given[i], frame);
            continue;
        }
        Value value;
        if (given[i] && !given[i]->isDefault)
            value = convertedArgument(*given[i], parameter.type);
        else if (parameter.hasDefault)
            value = evaluate(*parameter.defaultValue, parameter.type);
        else
            throw EngineError(201, 16, 4,
                              "Procedure or function '" + module.name + "' expects parameter '" +
                                  parameter.name + "', which was not supplied.");
        frame.variables.declare(parameter.name, parameter.type, std::move(value));
    }
}

/// An argument in its parameter's type. What cannot be converted is error 8114 for every type.
Value Interpreter::convertedArgument(const ProcedureArgument &argument, const SqlType &type) const
{
    try {
        return convertValue(argument.value, argument.type, type, {0, m_context.dateOrder});
    } catch (const EngineError &error) {
        if (error.message.number != 245 && error.message.number != 241)
            throw;
        throw EngineError(8114, 16, 5,
                          "Error converting data type " + messageTypeName(argument.type.id) + " to " +
                              messageTypeName(type.id) + '.');
    }
}

void Interpreter::bindTableParameter(const ModuleParameter &parameter, const ProcedureArgument *argument,
                                     Frame &frame)
{
    if (argument && !argument->table && !argument->isDefault)
        throw EngineError(206, 16, 2,
                          std::string("Operand type clash: ") + displayName(argument->type) +
                              " is incompatible with " + parameter.userType->name);
    if (argument && argument->table) {
        frame.tableParameters.insert(renamed(*argument->table, parameter.name));
        return;
    }
    const ScopedValue<Frame *> own(m_frame, &frame);
    declareTable(parameter.name, dynamic_cast<const Table &>(*parameter.userType->table));
}

std::int32_t Interpreter::callModule(const ModulePtr &module, const DatabasePtr &database,
                                     std::vector<ProcedureArgument> &arguments)
{
    Frame frame;
    frame.procedure = module->name;
    frame.module = module.get();
    try {
        bindParameters(*module, arguments, frame);
    } catch (EngineError &error) {
        if (error.message.number != 119) {
            error.message.procedure = module->name;
            error.message.line = 0;
            error.hasLine = true;
        }
        throw;
    }
    const std::int32_t before = m_context.transactionCount;
    runModule(*module, database, frame);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &name = arguments[i].name.empty() ? module->parameters[i].name : arguments[i].name;
        if (const VariableSlot *slot = arguments[i].output ? frame.variables.find(name) : nullptr) {
            arguments[i].name = slot->name;
            arguments[i].type = slot->type;
            arguments[i].value = slot->value;
        }
    }
    if (m_context.transactionCount != before) {
        EngineError error(
            266, 16, 2,
            "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT "
            "statements. Previous count = " +
                std::to_string(before) + ", current count = " + std::to_string(m_context.transactionCount) +
                '.');
        error.message.procedure = module->name;
        error.isRaised = true;
        report(error, 0);
    }
    return statusOf(frame.result);
}

void Interpreter::runModule(const Module &module, const DatabasePtr &database, Frame &frame)
{
    const auto names = enterModule(module, database);
    const ScopedValue<std::int32_t> level(m_context.nestingLevel, m_context.nestingLevel + 1);
    const ScopedValue<std::int64_t> procedure(m_context.procedureId, module.id);
    const ScopedValue<bool> noCount(m_options.noCount, m_options.noCount);
    inFrame(frame, [&] {
        try {
            runStatements(module.definition->statements);
        } catch (const EngineError &error) {
            if (!error.isReported || endsAll(error))
                throw;
        }
    });
}

/// Runs a function's statements inside of a statement: its errors are that statement's.
void Interpreter::runFunction(const Module &module, Frame &frame)
{
    frame.procedure = module.name;
    frame.module = &module;
    const ScopedValue<int> callbacks(m_callbacks, m_callbacks + 1);
    const ScopedValue<std::int64_t> rowCount(m_context.rowCount, m_context.rowCount);
    const ScopedValue<std::int32_t> lastError(m_context.lastError, m_context.lastError);
    const ScopedValue<std::vector<TableUse>> uses(m_uses, {});
    m_tries.push_back(-1);
    try {
        runModule(module, m_state.databases.find(module.database), frame);
    } catch (...) {
        m_tries.pop_back();
        throw;
    }
    m_tries.pop_back();
}

void Interpreter::declareArguments(const Module &module, std::span<const Value> arguments, Frame &frame)
{
    for (std::size_t i = 0; i < module.parameters.size(); ++i)
        frame.variables.declare(module.parameters[i].name, module.parameters[i].type, arguments[i]);
}

Value Interpreter::callFunction(const Module &module, std::span<const Value> arguments)
{
    if (module.definition->nullOnNull && std::any_of(arguments.begin(), arguments.end(), isNull))
        return {};
    Frame frame;
    declareArguments(module, arguments, frame);
    runFunction(module, frame);
    return std::move(frame.result);
}

std::vector<std::vector<Value>> Interpreter::callTableFunction(const Module &module,
                                                               std::span<const Value> arguments)
{
    Frame frame;
    declareArguments(module, arguments, frame);
    std::vector<std::vector<Value>> rows;
    {
        // The result outlives the function's own frame for as long as it takes to read it.
        Frame result;
        result.outer = m_frame;
        result.depth = m_frame->depth;
        const ScopedValue<Frame *> own(m_frame, &result);
        declareTable(module.resultTable->name, *module.resultTable);
        const TablePtr table = result.tables.find(module.resultTable->name);
        frame.tableParameters.insert(table);
        runFunction(module, frame);
        result.tableParameters.insert(renamed(*table, "@result"));
        const auto query = binder().bindSelect(Ast::selectAll({{"@result"}, true}));
        fetch(*query, [&rows](std::span<const Value> row) { rows.emplace_back(row.begin(), row.end()); });
        dropTables(result.tables, false);
    }
    return rows;
}

void Interpreter::declareTable(const std::string &name, Table definition)
{
    definition.kind = ObjectKind::Table;
    definition.name = name;
    definition.id = newObjectId();
    if (definition.identity)
        definition.identity =
            std::make_shared<IdentityCounter>(definition.identity->seed(), definition.identity->increment());
    Transactions::Change change(m_transactions);
    createTable(std::move(definition), nullptr);
    change.finish();
}

void Interpreter::requireOutsideFunction(const char *what) const
{
    if (m_callbacks == 0)
        return;
    if (std::string_view(what) == "EXECUTE")
        throw EngineError(557, 16, 2,
                          "Only functions and some extended stored procedures can be executed from within a "
                          "function.",
                          ErrorEffect::EndsBatch);
    throw EngineError(443, 16, 15,
                      std::string("Invalid use of a side-effecting operator '") + what +
                          "' within a function.",
                      ErrorEffect::EndsBatch);
}

} // namespace SampleServer
