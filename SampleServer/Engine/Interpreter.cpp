#include "Engine/Interpreter.h"
#include "Engine/Errors.h"
#include "Engine/Parser.h"
#include "Engine/ScopedValue.h"

namespace SampleServer {

namespace {

EngineError cannotOpen(std::string_view database)
{
    return {4060, 11, 1,
            "Cannot open database \"" + std::string(database) +
                "\" requested by the login. The login failed.",
            ErrorEffect::EndsBatch};
}

/// Whether a statement makes a transaction of its own under SET IMPLICIT_TRANSACTIONS ON.
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

bool isControl(const Ast::Statement &statement)
{
    return std::holds_alternative<Ast::If>(statement.node) ||
           std::holds_alternative<Ast::While>(statement.node) ||
           std::holds_alternative<Ast::Block>(statement.node);
}

} // namespace

Interpreter::Interpreter(std::shared_ptr<Server> server, ServerState &state, std::string_view login,
                         std::string_view database)
    : m_server(std::move(server))
    , m_state(state)
    , m_connection(m_context, [this](const Database &used) { m_transactions.useDefinitions(used); })
    , m_transactions(state.locks, m_connection, m_context, m_options)
{
    m_context.spid = state.takeProcessId();
    m_context.serverName = state.options.serverName;
    m_context.versionBanner = state.options.versionBanner;
    m_context.loginName = login;
    provideNames();
    m_database = state.databases.find(database.empty() ? "master" : database);
    if (!m_database) {
        state.returnProcessId(m_context.spid);
        throw cannotOpen(database);
    }
    ++m_database->users;
    m_context.database = m_database->name();
}

Interpreter::~Interpreter()
{
    m_transactions.rollback();
    --m_database->users;
    m_state.returnProcessId(m_context.spid);
}

void Interpreter::runBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink)
{
    const ScopedValue<ResultSink *> current(m_sink, &sink);
    m_connection.watch(&sink);
    m_transactions.watch(&sink);
    m_variables = {};
    for (const BatchParameter &parameter : parameters)
        m_variables.declare(parameter.name, parameter.type, parameter.value);
    const auto leave = [this] {
        m_connection.watch(nullptr);
        m_transactions.watch(nullptr);
        m_transactions.endStatement();
        m_connection.detachUnused();
    };
    try {
        runText(sql, {m_options.quotedIdentifiers, m_variables.names()});
    } catch (const BatchCancelled &) {
        // The client knows that it asked for this; its session goes on.
    } catch (...) {
        leave();
        throw;
    }
    leave();
    for (BatchParameter &parameter : parameters)
        parameter.value = m_variables.find(parameter.name)->value;
}

/// False when an error ended the text.
bool Interpreter::runText(std::string_view sql, const ParserOptions &options)
{
    std::vector<Ast::StatementPtr> statements;
    try {
        statements = parseBatch(sql, options);
    } catch (const EngineError &error) {
        reportSyntax(error);
        return false;
    }
    if (m_options.parseOnly)
        return true;
    try {
        runStatements(statements);
        return true;
    } catch (const EngineError &) {
        return false; // reported where it happened
    }
}

Interpreter::Flow Interpreter::runStatements(const std::vector<Ast::StatementPtr> &statements)
{
    for (const Ast::StatementPtr &statement : statements)
        if (const Flow flow = runStatement(*statement); flow != Flow::Next)
            return flow;
    return Flow::Next;
}

Interpreter::Flow Interpreter::runStatement(const Ast::Statement &statement)
{
    checkAttention();
    if (m_options.noExecute && !std::holds_alternative<Ast::SetOption>(statement.node))
        return Flow::Next;
    try {
        return runGuarded(statement);
    } catch (const EngineError &error) {
        m_transactions.endStatement();
        if (endsBatch(error))
            throw;
        return Flow::Next;
    } catch (...) {
        m_transactions.endStatement();
        throw;
    }
}

/// Runs one statement and reports its error; the error is thrown on for the batch to decide.
Interpreter::Flow Interpreter::runGuarded(const Ast::Statement &statement)
{
    m_line = statement.line;
    if (isControl(statement)) // what it holds reports for itself; only its condition fails here
        return std::visit([this](const auto &node) { return run(node); }, statement.node);
    if (m_options.implicitTransactions && !m_transactions.isOpen() && startsImplicitTransaction(statement))
        m_transactions.begin({});
    try {
        const Flow flow = runLeaf(statement);
        const bool keepsError = std::holds_alternative<Ast::RaiseError>(statement.node) ||
                                std::holds_alternative<Ast::Execute>(statement.node);
        if (!keepsError)
            m_context.lastError = 0;
        m_transactions.endStatement();
        return flow;
    } catch (const EngineError &error) {
        report(error, statement.line, changesRows(statement));
        throw;
    }
}

/// Runs a statement that holds no others, again when the tables it was bound to changed before it got its
/// locks.
Interpreter::Flow Interpreter::runLeaf(const Ast::Statement &statement)
{
    while (true) {
        m_context.statementTime = currentLocalTime();
        m_context.statementTimeUtc = currentUtcTime();
        m_uses.clear();
        try {
            return std::visit([this](const auto &node) { return run(node); }, statement.node);
        } catch (const DefinitionsChanged &) {
            m_transactions.endStatement();
        }
    }
}

void Interpreter::reportSyntax(const EngineError &error)
{
    const ServerMessage &message = error.message;
    if (message.number != 105)
        return report(error, 1);
    // An open quote is told twice: what is open, and where the parser noticed.
    m_sink->message(message);
    const std::size_t quote = message.text.find('\'');
    const std::string rest = message.text.substr(quote, message.text.size() - quote - 1);
    EngineError second(102, 15, 1, "Incorrect syntax near " + rest + '.', ErrorEffect::EndsBatch);
    report(second, message.line);
}

void Interpreter::report(const EngineError &error, int line, bool changesRows)
{
    ServerMessage message = error.message;
    if (!error.hasLine)
        message.line = line;
    m_context.lastError = message.number;
    m_context.rowCount = 0;
    const bool rollsBack = error.effect == ErrorEffect::RollsBack || m_options.abortTransactions;
    m_sink->message(message);
    if (rollsBack)
        m_transactions.rollback();
    else if (changesRows && error.effect == ErrorEffect::EndsStatement)
        m_sink->message({3621, 0, 0, "The statement has been terminated.", {}, message.line});
    StatementEnd end;
    end.error = true;
    m_sink->endStatement(end);
}

bool Interpreter::endsBatch(const EngineError &error)
{
    return error.effect != ErrorEffect::EndsStatement || m_options.abortTransactions;
}

void Interpreter::checkAttention()
{
    if (m_sink->attentionRequested())
        throw BatchCancelled();
}

Interpreter::Flow Interpreter::run(const Ast::If &node)
{
    bool condition = false;
    try {
        condition = holds(*node.condition);
    } catch (const EngineError &error) {
        report(error, m_line);
        throw;
    }
    m_transactions.endStatement();
    if (condition)
        return runStatement(*node.then);
    return node.otherwise ? runStatement(*node.otherwise) : Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::While &node)
{
    const int line = m_line;
    while (true) {
        m_line = line;
        checkAttention();
        try {
            if (!holds(*node.condition))
                return Flow::Next;
        } catch (const EngineError &error) {
            report(error, line);
            throw;
        }
        m_transactions.endStatement();
        const Flow flow = runStatement(*node.body);
        if (flow == Flow::Break)
            return Flow::Next;
        if (flow == Flow::Return)
            return flow;
    }
}

Interpreter::Flow Interpreter::run(const Ast::Block &node)
{
    return runStatements(node.statements);
}

bool Interpreter::holds(const Ast::Expression &condition)
{
    m_context.statementTime = currentLocalTime();
    m_context.statementTimeUtc = currentUtcTime();
    Value value;
    for (bool bound = false; !bound;) {
        m_uses.clear();
        try {
            value = evaluate(*binder().bindCondition(condition));
            bound = true;
        } catch (const DefinitionsChanged &) {
            m_transactions.endStatement();
        }
    }
    return !isNull(value) && std::get<std::int64_t>(value) != 0;
}

} // namespace SampleServer
