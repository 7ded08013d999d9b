#include "Engine/Run/ControlExecutor.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parser.h"
#include "Engine/Run/ParseOnlyOption.h"
#include "Engine/ScopedValue.h"

namespace SampleServer {

namespace {

/// Whether a statement starts a transaction under SET IMPLICIT_TRANSACTIONS ON.
bool startsImplicitTransaction(const Ast::Statement &statement)
{
    return std::visit(
        [](const auto &node) {
            using Node = std::decay_t<decltype(node)>;
            if constexpr (std::is_same_v<Node, Ast::Select>)
                return node.query->op.has_value() || !node.query->specification.from.empty();
            else
                return std::is_same_v<Node, Ast::Insert> || std::is_same_v<Node, Ast::Update> ||
                       std::is_same_v<Node, Ast::Delete> || std::is_same_v<Node, Ast::CreateTable> ||
                       std::is_same_v<Node, Ast::DropTable> || std::is_same_v<Node, Ast::TruncateTable>;
        },
        statement.node);
}

bool changesRows(const Ast::Statement &statement)
{
    return std::holds_alternative<Ast::Insert>(statement.node) ||
           std::holds_alternative<Ast::Update>(statement.node) ||
           std::holds_alternative<Ast::Delete>(statement.node);
}

/// Whether a definition failed because of the rows' values.
bool meetsRows(const Ast::Statement &statement, const EngineError &error)
{
    const bool isDefinition = std::holds_alternative<Ast::AlterTable>(statement.node) ||
                              std::holds_alternative<Ast::CreateIndex>(statement.node);
    const std::int32_t number = error.message.number;
    return isDefinition && (number == 515 || number == 1505 || number == 2628 || number == 8152);
}

bool isControl(const Ast::Statement &statement)
{
    return std::holds_alternative<Ast::If>(statement.node) ||
           std::holds_alternative<Ast::While>(statement.node) ||
           std::holds_alternative<Ast::Block>(statement.node) ||
           std::holds_alternative<Ast::TryCatch>(statement.node);
}

/// Whether the end of a successful statement must still be sent: queries, changes of rows, calls and
/// RAISERROR send theirs themselves. Declarations and control flow have none (MS-TDS 2.2.7.6).
bool owesItsEnd(const Ast::Statement &statement)
{
    return std::visit(
        [](const auto &node) {
            using Node = std::decay_t<decltype(node)>;
            return !std::is_same_v<Node, Ast::Select> && !std::is_same_v<Node, Ast::Insert> &&
                   !std::is_same_v<Node, Ast::Update> && !std::is_same_v<Node, Ast::Delete> &&
                   !std::is_same_v<Node, Ast::Execute> && !std::is_same_v<Node, Ast::RaiseError> &&
                   !std::is_same_v<Node, Ast::Declare> && !std::is_same_v<Node, Ast::Break> &&
                   !std::is_same_v<Node, Ast::Continue> && !std::is_same_v<Node, Ast::Return>;
        },
        statement.node);
}

} // namespace

void ControlExecutor::runText(std::string_view sql, const ParserOptions &options)
{
    std::vector<Ast::StatementPtr> statements;
    try {
        statements = parseBatch(sql, options);
    } catch (EngineError &error) {
        m_errors.locate(error, 1);
        if (m_errors.isCaught(error))
            throw;
        return m_errors.reportSyntax(error);
    }
    if (const auto parseOnly = parseOnlyOption(statements))
        m_session.options.parseOnly = *parseOnly;
    if (m_session.options.parseOnly)
        return;
    try {
        runStatements(statements);
    } catch (const EngineError &error) {
        if (!error.isReported || m_errors.endsAll(error))
            throw;
    }
}

Flow ControlExecutor::runStatements(const std::vector<Ast::StatementPtr> &statements)
{
    for (const Ast::StatementPtr &statement : statements)
        if (const Flow flow = runStatement(*statement); flow != Flow::Next)
            return flow;
    return Flow::Next;
}

Flow ControlExecutor::runStatement(const Ast::Statement &statement)
{
    m_session.checkAttention();
    if (m_session.options.noExecute && !std::holds_alternative<Ast::SetOption>(statement.node))
        return Flow::Next;
    try {
        return runGuarded(statement);
    } catch (const EngineError &error) {
        m_session.endStatement();
        if (!error.isReported || m_errors.endsBatch(error))
            throw;
        return Flow::Next;
    } catch (...) {
        m_session.endStatement();
        throw;
    }
}

/// Runs one statement and reports its error; rethrows the error, whose effect the batch determines.
Flow ControlExecutor::runGuarded(const Ast::Statement &statement)
{
    m_session.line = statement.line;
    if (isControl(statement)) // nested statements report their own errors; only the condition can fail here
        return dispatch(statement);
    if (m_session.options.implicitTransactions && !m_session.transactions.isOpen() &&
        startsImplicitTransaction(statement))
        m_session.transactions.begin({});
    try {
        const Flow flow = runLeaf(statement);
        if (owesItsEnd(statement))
            m_session.endWithoutCount();
        const bool keepsError = std::holds_alternative<Ast::RaiseError>(statement.node) ||
                                std::holds_alternative<Ast::Execute>(statement.node);
        if (!keepsError)
            m_session.evaluation.lastError = 0;
        m_session.endStatement();
        return flow;
    } catch (EngineError &error) {
        m_errors.report(error, statement.line, changesRows(statement) || meetsRows(statement, error));
        throw;
    }
}

/// Runs a statement that contains no others, again if its tables changed before it got its locks.
Flow ControlExecutor::runLeaf(const Ast::Statement &statement)
{
    while (true) {
        startClock();
        m_names.uses().clear();
        m_session.evaluation.boundSources = 0;
        try {
            return dispatch(statement);
        } catch (const DefinitionsChanged &) {
            m_session.endStatement();
        }
    }
}

/// Inside a function the time of the calling statement applies.
void ControlExecutor::startClock()
{
    if (m_session.callbacks > 0)
        return;
    m_session.evaluation.statementTime = currentLocalTime();
    m_session.evaluation.statementTimeUtc = currentUtcTime();
}

Flow ControlExecutor::dispatch(const Ast::Statement &statement)
{
    return std::visit(
        [this](const auto &node) {
            if constexpr (requires { run(node); }) {
                return run(node);
            } else {
                if constexpr (requires { m_queries.run(node); })
                    m_queries.run(node);
                else if constexpr (requires { m_changes.run(node); })
                    m_changes.run(node);
                else if constexpr (requires { m_definitions.run(node); })
                    m_definitions.run(node);
                else if constexpr (requires { m_modules.run(node); })
                    m_modules.run(node);
                else if constexpr (requires { m_optionStatements.run(node); })
                    m_optionStatements.run(node);
                else
                    m_sessionStatements.run(node);
                return Flow::Next;
            }
        },
        statement.node);
}

Flow ControlExecutor::run(const Ast::If &node)
{
    bool condition = false;
    try {
        condition = holds(*node.condition);
    } catch (EngineError &error) {
        m_errors.report(error, m_session.line);
        throw;
    }
    m_session.evaluation.lastError = 0;
    m_session.endStatement();
    if (condition)
        return runStatement(*node.then);
    return node.otherwise ? runStatement(*node.otherwise) : Flow::Next;
}

Flow ControlExecutor::run(const Ast::While &node)
{
    const int line = m_session.line;
    while (true) {
        m_session.line = line;
        m_session.checkAttention();
        try {
            if (!holds(*node.condition))
                return Flow::Next;
        } catch (EngineError &error) {
            m_errors.report(error, line);
            throw;
        }
        m_session.endStatement();
        const Flow flow = runStatement(*node.body);
        if (flow == Flow::Break)
            return Flow::Next;
        if (flow == Flow::Return)
            return flow;
    }
}

Flow ControlExecutor::run(const Ast::TryCatch &node)
{
    const int depth = m_session.frame->depth;
    std::optional<EngineError> caught;
    try {
        const ErrorReporter::TryBlock block(m_errors, depth);
        return run(node.body);
    } catch (const EngineError &error) {
        if (error.isReported || !m_errors.catches(depth, error))
            throw;
        caught = error;
    }
    if (m_session.transactions.isOpen() && m_errors.rollsBack(*caught))
        m_session.evaluation.isTransactionDoomed = true;
    m_session.evaluation.lastError = caught->message.number;
    const ServerMessage &last = caught->more.empty() ? caught->message : caught->more.back();
    const ScopedValue<std::optional<ServerMessage>> current(m_session.evaluation.caughtError, last);
    return run(node.handler);
}

Flow ControlExecutor::run(const Ast::Return &node)
{
    if (node.status) {
        const bool isFunction =
            m_session.frame->module && m_session.frame->module->kind == ObjectKind::ScalarFunction;
        m_session.frame->result = m_queries.evaluate(
            *node.status, isFunction ? m_session.frame->module->result : SqlType{TypeId::Int, 0, 0, 0});
    }
    return Flow::Return;
}

bool ControlExecutor::holds(const Ast::Expression &condition)
{
    startClock();
    Value value;
    for (bool bound = false; !bound;) {
        m_names.uses().clear();
        m_session.evaluation.boundSources = 0;
        try {
            value = m_queries.evaluate(*m_queries.binder().bindCondition(condition));
            bound = true;
        } catch (const DefinitionsChanged &) {
            m_session.endStatement();
        }
    }
    return !isNull(value) && std::get<std::int64_t>(value) != 0;
}

} // namespace SampleServer
