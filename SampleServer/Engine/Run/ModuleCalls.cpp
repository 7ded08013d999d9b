#include "Engine/Run/ModuleCalls.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"
#include "Types/TypeTraits.h"

#include <algorithm>

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

constexpr int MaxNesting = 32;

} // namespace

ModuleCalls::ModuleCalls(QueryExecutor &queries, ErrorReporter &errors)
    : m_session(queries.session())
    , m_errors(errors)
    , m_names(queries.names())
    , m_store(queries.store())
    , m_queries(queries)
{
    m_session.evaluation.callFunction = [this](const Module &module, std::span<const Value> arguments) {
        return callFunction(module, arguments);
    };
    m_session.evaluation.callTableFunction = [this](const Module &module, std::span<const Value> arguments) {
        return callTableFunction(module, arguments);
    };
}

void ModuleCalls::inFrame(Frame &frame, const std::function<void()> &work)
{
    if (m_session.frame->depth >= MaxNesting)
        throw EngineError(
            217, 16, 1,
            "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32).",
            ErrorEffect::EndsAll);
    frame.outer = m_session.frame;
    frame.depth = m_session.frame->depth + 1;
    const ScopedValue<int> line(m_session.line, m_session.line);
    const ScopedValue<SessionOptions> options(m_session.options, m_session.options);
    const ScopedValue<std::optional<Decimal>> identity(m_session.evaluation.scopeIdentity, std::nullopt);
    const ScopedValue<Frame *> current(m_session.frame, &frame);
    const std::string database = m_session.evaluation.database;
    const auto back = [&] {
        m_store.dropTables(frame.tables, false);
        if (m_session.evaluation.database != database && m_session.state.databases.find(database))
            m_session.useDatabase(database);
    };
    try {
        work();
    } catch (...) {
        back();
        throw;
    }
    back();
}

/// Returns the arguments in parameter order, by name or position; null for omitted ones.
std::vector<ProcedureArgument *>
ModuleCalls::argumentsByParameter(const Module &module, std::vector<ProcedureArgument> &arguments) const
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
    return given;
}

/// Declares the parameters as variables of the frame; omitted ones get their defaults.
void ModuleCalls::bindParameters(const Module &module, std::vector<ProcedureArgument> &arguments,
                                 Frame &frame)
{
    const std::vector<ProcedureArgument *> given = argumentsByParameter(module, arguments);
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
            value = m_queries.evaluate(*parameter.defaultValue, parameter.type);
        else
            throw EngineError(201, 16, 4,
                              "Procedure or function '" + module.name + "' expects parameter '" +
                                  parameter.name + "', which was not supplied.");
        frame.variables.declare(parameter.name, parameter.type, std::move(value));
    }
}

/// Converts an argument to its parameter's type. Failed conversions are error 8114 for every type.
Value ModuleCalls::convertedArgument(const ProcedureArgument &argument, const SqlType &type) const
{
    try {
        return convertValue(argument.value, argument.type, type, {0, m_session.evaluation.dateOrder});
    } catch (const EngineError &error) {
        if (error.message.number != 245 && error.message.number != 241)
            throw;
        throw EngineError(8114, 16, 5,
                          "Error converting data type " + messageTypeName(argument.type.id) + " to " +
                              messageTypeName(type.id) + '.');
    }
}

void ModuleCalls::bindTableParameter(const ModuleParameter &parameter, const ProcedureArgument *argument,
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
    const ScopedValue<Frame *> own(m_session.frame, &frame);
    m_store.declareTable(parameter.name, dynamic_cast<const Table &>(*parameter.userType->table));
}

std::int32_t ModuleCalls::callModule(const ModulePtr &module, const DatabasePtr &database,
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
    const std::int32_t before = m_session.evaluation.transactionCount;
    runModule(*module, database, frame);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &name = arguments[i].name.empty() ? module->parameters[i].name : arguments[i].name;
        if (const VariableSlot *slot = arguments[i].output ? frame.variables.find(name) : nullptr) {
            arguments[i].name = slot->name;
            arguments[i].type = slot->type;
            arguments[i].value = slot->value;
        }
    }
    if (m_session.evaluation.transactionCount != before) {
        EngineError error(
            266, 16, 2,
            "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT "
            "statements. Previous count = " +
                std::to_string(before) +
                ", current count = " + std::to_string(m_session.evaluation.transactionCount) + '.');
        error.message.procedure = module->name;
        error.isRaised = true;
        m_errors.report(error, 0);
    }
    return statusOf(frame.result);
}

std::int32_t ModuleCalls::callFunctionAsProcedure(const Module &module,
                                                  std::vector<ProcedureArgument> &arguments)
{
    Frame frame;
    bindParameters(module, arguments, frame);
    runFunction(module, frame);
    return statusOf(frame.result);
}

void ModuleCalls::runModule(const Module &module, const DatabasePtr &database, Frame &frame)
{
    const auto names = m_names.enterModule(module, database);
    const ScopedValue<std::int32_t> level(m_session.evaluation.nestingLevel,
                                          m_session.evaluation.nestingLevel + 1);
    const ScopedValue<std::int64_t> procedure(m_session.evaluation.procedureId, module.id);
    const ScopedValue<bool> noCount(m_session.options.noCount, m_session.options.noCount);
    inFrame(frame, [&] {
        try {
            m_session.runner->runStatements(module.definition->statements);
        } catch (const EngineError &error) {
            if (!error.isReported || m_errors.endsAll(error))
                throw;
        }
    });
}

/// Runs a function's statements inside a statement, to which their errors belong.
void ModuleCalls::runFunction(const Module &module, Frame &frame)
{
    frame.procedure = module.name;
    frame.module = &module;
    const ScopedValue<int> callbacks(m_session.callbacks, m_session.callbacks + 1);
    const ScopedValue<std::int64_t> rowCount(m_session.evaluation.rowCount, m_session.evaluation.rowCount);
    const ScopedValue<std::int32_t> lastError(m_session.evaluation.lastError, m_session.evaluation.lastError);
    const ScopedValue<std::vector<TableUse>> uses(m_names.uses(), {});
    const ErrorReporter::TryBlock block(m_errors, -1);
    runModule(module, m_session.state.databases.find(module.database), frame);
}

void ModuleCalls::declareArguments(const Module &module, std::span<const Value> arguments, Frame &frame)
{
    for (std::size_t i = 0; i < module.parameters.size(); ++i)
        frame.variables.declare(module.parameters[i].name, module.parameters[i].type, arguments[i]);
}

Value ModuleCalls::callFunction(const Module &module, std::span<const Value> arguments)
{
    if (module.definition->nullOnNull && std::any_of(arguments.begin(), arguments.end(), isNull))
        return {};
    Frame frame;
    declareArguments(module, arguments, frame);
    runFunction(module, frame);
    return std::move(frame.result);
}

std::vector<std::vector<Value>> ModuleCalls::callTableFunction(const Module &module,
                                                               std::span<const Value> arguments)
{
    Frame frame;
    declareArguments(module, arguments, frame);
    std::vector<std::vector<Value>> rows;
    {
        // The result is kept after the function's frame until it has been read.
        Frame result;
        result.outer = m_session.frame;
        result.depth = m_session.frame->depth;
        const ScopedValue<Frame *> own(m_session.frame, &result);
        m_store.declareTable(module.resultTable->name, *module.resultTable);
        const TablePtr table = result.tables.find(module.resultTable->name);
        frame.tableParameters.insert(table);
        runFunction(module, frame);
        result.tableParameters.insert(renamed(*table, "@result"));
        const auto query = m_queries.binder().bindSelect(Ast::selectAll({{"@result"}, true}));
        m_queries.fetch(*query,
                        [&rows](std::span<const Value> row) { rows.emplace_back(row.begin(), row.end()); });
        m_store.dropTables(result.tables, false);
    }
    return rows;
}

} // namespace SampleServer
