#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Parse/NameText.h"
#include "Engine/Parse/Parser.h"
#include "Engine/Run/Interpreter.h"
#include "Engine/ScopedValue.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

namespace {

constexpr int MaxNesting = 32;

struct Parameter
{
    std::string name;
    Ast::TypeName type;
    bool output = false;
};

/// Reads the parameter list of sp_executesql, "@a int, @b nvarchar(20) OUTPUT", as the DECLARE that it nearly
/// is.
std::vector<Parameter> parseParameters(std::string list)
{
    std::vector<Parameter> parameters;
    std::string declaration = "DECLARE ";
    std::vector<bool> outputs;
    bool output = false;
    for (const Token &token : tokenize(list, true)) {
        const bool comma = token.kind == TokenKind::Symbol && token.value == ",";
        if (token.keyword == "OUTPUT" || token.keyword == "OUT") {
            output = true;
            continue;
        }
        if (token.kind == TokenKind::Variable && !outputs.empty())
            outputs.back() = output;
        if (token.kind == TokenKind::Variable) {
            outputs.push_back(false);
            output = false;
        }
        declaration +=
            comma ? std::string(",") : ' ' + std::string(token.kind == TokenKind::End ? "" : token.source);
    }
    if (outputs.empty())
        return parameters;
    outputs.back() = output;
    const auto statements = parseBatch(declaration, {});
    std::size_t at = 0;
    for (const auto &variable : std::get<Ast::Declare>(statements.at(0)->node).variables)
        parameters.push_back({variable.name, variable.type, outputs.at(at++)});
    return parameters;
}

} // namespace

/// Drops the temporary tables of a frame; with `variablesOnly` its table variables.
void Interpreter::dropTables(TableMap &tables, bool variablesOnly)
{
    for (const TablePtr &table : tables.all()) {
        if (variablesOnly && !table->name.starts_with('@'))
            continue;
        m_connection.dropTemporary(table->physicalName());
        tables.erase(*table);
    }
}

void Interpreter::inFrame(Frame &frame, const std::function<void()> &work)
{
    if (m_frame->depth >= MaxNesting)
        throw EngineError(
            217, 16, 1,
            "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32).",
            ErrorEffect::EndsAll);
    frame.outer = m_frame;
    frame.depth = m_frame->depth + 1;
    const ScopedValue<int> line(m_line, m_line);
    const ScopedValue<SessionOptions> options(m_options, m_options);
    const ScopedValue<std::optional<Decimal>> identity(m_context.scopeIdentity, std::nullopt);
    const ScopedValue<Frame *> current(m_frame, &frame);
    const std::string database = m_context.database;
    const auto back = [&] {
        dropTables(frame.tables, false);
        if (m_context.database != database && m_state.databases.find(database))
            useDatabase(database);
    };
    try {
        work();
    } catch (...) {
        back();
        throw;
    }
    back();
}

/// Runs a text as a batch of its own: with these variables instead of the current ones, and back in the
/// current database afterwards.
void Interpreter::executeText(std::string_view sql, Variables &variables)
{
    Frame frame;
    std::swap(frame.variables, variables);
    frame.procedure = m_frame->procedure;
    inFrame(frame, [&] {
        runText(sql, {m_options.quotedIdentifiers, frame.variables.names(), m_context.edition});
    });
    std::swap(frame.variables, variables);
}

Interpreter::Flow Interpreter::run(const Ast::Execute &node)
{
    requireOutsideFunction("EXECUTE");
    if (node.text) {
        const Value text = evaluate(*node.text, LongTextType);
        Variables none;
        if (!isNull(text))
            executeText(std::get<std::string>(text), none);
        return Flow::Next;
    }
    Ast::ObjectName name = node.procedure;
    if (!node.procedureVariable.empty()) {
        const VariableSlot *slot = m_frame->variables.find(node.procedureVariable);
        name =
            nameFromText(slot && !isNull(slot->value) ? textOf(slot->value, slot->type, 0) : std::string());
    }
    if (!name.parts.empty() && equalsIgnoringAsciiCase(name.object(), "sp_executesql")) {
        executeSql(node);
        return Flow::Next;
    }
    std::vector<ProcedureArgument> arguments = evaluateArguments(node);
    endStatement(); // the procedure's statements have their own locks
    const std::int32_t status = call(name, arguments);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto *variable = node.arguments[i].value
                                   ? std::get_if<Ast::VariableReference>(&node.arguments[i].value->node)
                                   : nullptr;
        if (arguments[i].output && variable)
            assign(variable->name, arguments[i].value, arguments[i].type);
    }
    if (!node.statusVariable.empty())
        assign(node.statusVariable, std::int64_t{status}, {TypeId::Int, 0, 0, 0});
    if (m_frame->depth == 0) {
        m_sink->returnStatus(status);
        m_sink->endProcedure({});
    }
    return Flow::Next;
}

std::vector<ProcedureArgument> Interpreter::evaluateArguments(const Ast::Execute &node)
{
    std::vector<ProcedureArgument> arguments;
    for (const Ast::Execute::Argument &item : node.arguments) {
        ProcedureArgument argument;
        argument.name = item.name;
        argument.output = item.output;
        argument.isDefault = !item.value;
        const auto *variable = item.value ? std::get_if<Ast::VariableReference>(&item.value->node) : nullptr;
        if (variable && !m_frame->variables.find(variable->name))
            argument.table = findTemporary(variable->name);
        if (item.value && !argument.table) {
            const auto bound = binder().bindValue(*item.value);
            argument.type = bound->type;
            argument.value = evaluate(*bound);
        }
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

Interpreter::Flow Interpreter::run(const Ast::Return &node)
{
    if (node.status) {
        const bool isFunction = m_frame->module && m_frame->module->kind == ObjectKind::ScalarFunction;
        m_frame->result =
            evaluate(*node.status, isFunction ? m_frame->module->result : SqlType{TypeId::Int, 0, 0, 0});
    }
    return Flow::Return;
}

/// EXEC sp_executesql N'text', N'parameters', values ...
void Interpreter::executeSql(const Ast::Execute &node)
{
    const auto text = [&](std::size_t i) -> std::string {
        if (i >= node.arguments.size() || !node.arguments[i].value)
            return {};
        const Value value = evaluate(*node.arguments[i].value, LongTextType);
        return isNull(value) ? std::string() : std::get<std::string>(value);
    };
    if (!node.arguments.empty() && node.arguments[0].value &&
        !isUnicodeText(binder().bindValue(*node.arguments[0].value)->type.id)) {
        EngineError error(214, 16, 2,
                          "Procedure expects parameter '@statement' of type 'ntext/nchar/nvarchar'.");
        error.message.procedure = "sp_executesql";
        throw error;
    }
    const std::string statement = text(0);
    const std::vector<Parameter> parameters = parseParameters(text(1));
    Variables variables;
    std::vector<std::pair<std::string, std::string>> outputs; // the text's variable and the caller's
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const SqlType type = findType(parameters[i].type, static_cast<int>(i) + 1).type;
        const Ast::Execute::Argument *argument = nullptr;
        for (std::size_t a = 2; a < node.arguments.size(); ++a) {
            const bool byName = !node.arguments[a].name.empty();
            if (byName ? equalsIgnoringAsciiCase(node.arguments[a].name, parameters[i].name) : a - 2 == i)
                argument = &node.arguments[a];
        }
        if (!argument)
            throw EngineError(8178, 16, 1,
                              "The parameterized query '(" + text(1) + ")" + statement +
                                  "' expects the parameter '" + parameters[i].name +
                                  "', which was not supplied.");
        variables.declare(parameters[i].name, type,
                          argument->value ? evaluate(*argument->value, type) : Value());
        const auto *variable =
            argument->value ? std::get_if<Ast::VariableReference>(&argument->value->node) : nullptr;
        if (argument->output && variable && parameters[i].output)
            outputs.emplace_back(parameters[i].name, variable->name);
    }
    executeText(statement, variables);
    for (const auto &[inner, outer] : outputs)
        if (const VariableSlot *slot = variables.find(inner))
            assign(outer, slot->value, slot->type);
    if (!node.statusVariable.empty())
        assign(node.statusVariable, std::int64_t{0}, {TypeId::Int, 0, 0, 0});
}

} // namespace SampleServer
