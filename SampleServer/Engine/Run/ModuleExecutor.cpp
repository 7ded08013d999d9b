#include "Engine/Run/ModuleExecutor.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Parse/Lexer.h"
#include "Engine/Parse/NameText.h"
#include "Engine/Parse/Parser.h"
#include "Engine/ScopedValue.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

namespace {

struct Parameter
{
    std::string name;
    Ast::TypeName type;
    bool output = false;
};

/// Parses the parameter list of sp_executesql, "@a int, @b nvarchar(20) OUTPUT", like a DECLARE.
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

void ModuleExecutor::run(const Ast::Execute &node)
{
    m_session.requireOutsideFunction("EXECUTE");
    if (node.text) {
        const Value text = m_queries.evaluate(*node.text, LongTextType);
        Variables none;
        if (!isNull(text))
            executeText(std::get<std::string>(text), none);
        return;
    }
    Ast::ObjectName name = node.procedure;
    if (!node.procedureVariable.empty()) {
        const VariableSlot *slot = m_session.frame->variables.find(node.procedureVariable);
        name =
            nameFromText(slot && !isNull(slot->value) ? textOf(slot->value, slot->type, 0) : std::string());
    }
    if (!name.parts.empty() && equalsIgnoringAsciiCase(name.object(), "sp_executesql")) {
        executeSql(node);
        return;
    }
    std::vector<ProcedureArgument> arguments = evaluateArguments(node);
    m_session.endStatement(); // the procedure's statements have their own locks
    const std::int32_t status = call(name, arguments);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto *variable = node.arguments[i].value
                                   ? std::get_if<Ast::VariableReference>(&node.arguments[i].value->node)
                                   : nullptr;
        if (arguments[i].output && variable)
            m_queries.assign(variable->name, arguments[i].value, arguments[i].type);
    }
    if (!node.statusVariable.empty())
        m_queries.assign(node.statusVariable, std::int64_t{status}, {TypeId::Int, 0, 0, 0});
    if (m_session.frame->depth == 0) {
        m_session.sink->returnStatus(status);
        m_session.sink->endProcedure({});
    }
}

std::vector<ProcedureArgument> ModuleExecutor::evaluateArguments(const Ast::Execute &node)
{
    std::vector<ProcedureArgument> arguments;
    for (const Ast::Execute::Argument &item : node.arguments) {
        ProcedureArgument argument;
        argument.name = item.name;
        argument.output = item.output;
        argument.isDefault = !item.value;
        const auto *variable = item.value ? std::get_if<Ast::VariableReference>(&item.value->node) : nullptr;
        if (variable && !m_session.frame->variables.find(variable->name))
            argument.table = m_store.findTemporary(variable->name);
        if (item.value && !argument.table) {
            const auto bound = m_queries.binder().bindValue(*item.value);
            argument.type = bound->type;
            argument.value = m_queries.evaluate(*bound);
        }
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

/// Runs a text as a separate batch: with these variables instead of the current ones; restores the current
/// database afterwards.
void ModuleExecutor::executeText(std::string_view sql, Variables &variables)
{
    Frame frame;
    std::swap(frame.variables, variables);
    frame.procedure = m_session.frame->procedure;
    m_calls.inFrame(frame, [&] {
        m_session.runner->runText(sql, {m_session.options.quotedIdentifiers, frame.variables.names(),
                                        m_session.evaluation.edition});
    });
    std::swap(frame.variables, variables);
}

/// EXEC sp_executesql N'text', N'parameters', values ...
void ModuleExecutor::executeSql(const Ast::Execute &node)
{
    const auto text = [&](std::size_t i) -> std::string {
        if (i >= node.arguments.size() || !node.arguments[i].value)
            return {};
        const Value value = m_queries.evaluate(*node.arguments[i].value, LongTextType);
        return isNull(value) ? std::string() : std::get<std::string>(value);
    };
    if (!node.arguments.empty() && node.arguments[0].value &&
        !isUnicodeText(m_queries.binder().bindValue(*node.arguments[0].value)->type.id)) {
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
        const SqlType type = m_names.findType(parameters[i].type, static_cast<int>(i) + 1).type;
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
                          argument->value ? m_queries.evaluate(*argument->value, type) : Value());
        const auto *variable =
            argument->value ? std::get_if<Ast::VariableReference>(&argument->value->node) : nullptr;
        if (argument->output && variable && parameters[i].output)
            outputs.emplace_back(parameters[i].name, variable->name);
    }
    executeText(statement, variables);
    for (const auto &[inner, outer] : outputs)
        if (const VariableSlot *slot = variables.find(inner))
            m_queries.assign(outer, slot->value, slot->type);
    if (!node.statusVariable.empty())
        m_queries.assign(node.statusVariable, std::int64_t{0}, {TypeId::Int, 0, 0, 0});
}

/// INSERT ... EXEC: what the text or procedure returns, once all of it has run.
std::vector<CollectingSink::Row> ModuleExecutor::collectExecuted(const Ast::Execute &node)
{
    if (dynamic_cast<CollectingSink *>(m_session.sink))
        throw EngineError(8164, 16, 1, "An INSERT EXEC statement cannot be nested.", ErrorEffect::EndsBatch);
    CollectingSink collector(*m_session.sink);
    const ScopedValue<ResultSink *> current(m_session.sink, &collector);
    run(node);
    return collector.take();
}

std::int32_t ModuleExecutor::call(const Ast::ObjectName &name, std::vector<ProcedureArgument> &arguments)
{
    m_names.requireReachable(name);
    const FoundObject found = name.parts.empty() ? FoundObject() : m_names.findObject(name);
    if (found.object && found.object->kind == ObjectKind::Procedure)
        return m_calls.callModule(std::dynamic_pointer_cast<const Module>(found.object), found.database,
                                  arguments);
    if (found.object && found.object->kind == ObjectKind::ScalarFunction)
        return m_calls.callFunctionAsProcedure(dynamic_cast<const Module &>(*found.object), arguments);
    if (const auto status = m_system.call(name, arguments))
        return *status;
    throw EngineError(2812, 16, 62, "Could not find stored procedure '" + name.toString() + "'.");
}

} // namespace SampleServer
