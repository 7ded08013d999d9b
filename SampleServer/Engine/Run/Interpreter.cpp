#include "Engine/Run/Interpreter.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parser.h"
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

/// Whether a definition failed for what the rows hold.
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

/// Whether a statement that succeeded still owes its end: queries, changes of rows, calls and RAISERROR send
/// theirs themselves. Declarations and control flow have none (MS-TDS 2.2.7.6).
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
    m_context.edition = state.edition;
    m_context.loginName = login;
    provideNames();
    m_database = state.databases.find(database.empty() ? "master" : database);
    if (!m_database) {
        state.returnProcessId(m_context.spid);
        throw cannotOpen(database);
    }
    ++m_database->users;
    m_context.database = m_database->name();
    m_info.loginTime = m_info.requestTime = currentLocalTime();
    describeSession({}, false);
}

Interpreter::~Interpreter()
{
    m_transactions.rollback();
    --m_database->users;
    m_state.returnProcessId(m_context.spid);
}

void Interpreter::runBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink)
{
    runRequest(sink, sql, [&] {
        for (const BatchParameter &parameter : parameters)
            m_batch.variables.declare(parameter.name, parameter.type, parameter.value);
        runText(sql, {m_options.quotedIdentifiers, m_batch.variables.names(), m_context.edition});
    });
    for (BatchParameter &parameter : parameters)
        parameter.value = m_batch.variables.find(parameter.name)->value;
}

/// Does what a client asks for, from clean variables to the end of what the statements left open.
void Interpreter::runRequest(ResultSink &sink, std::string_view text, const std::function<void()> &work)
{
    describeSession(text, true);
    const ScopedValue<ResultSink *> current(m_sink, &sink);
    m_connection.watch(&sink);
    m_transactions.watch(&sink);
    m_batch.variables = {};
    const auto leave = [this] {
        m_connection.watch(nullptr);
        m_transactions.watch(nullptr);
        dropTables(m_batch.tables, true);
        m_transactions.endStatement();
        m_connection.detachUnused();
        describeSession({}, false);
    };
    try {
        try {
            work();
        } catch (const EngineError &) {
            // It was reported where it happened.
        }
        endDoomedTransaction();
    } catch (const std::bad_alloc &) {
        reportLackOfMemory();
    } catch (const BatchCancelled &) {
        // The client knows that it asked for this; its session goes on.
    } catch (...) {
        leave();
        throw;
    }
    leave();
}

void Interpreter::reportLackOfMemory()
{
    m_tries.clear();
    EngineError error = Errors::outOfMemory();
    report(error, m_line);
}

/// Tells the other sessions what this one does; without a text it keeps the last one.
void Interpreter::describeSession(std::string_view text, bool isRunning)
{
    m_info.id = m_context.spid;
    m_info.login = m_context.loginName;
    m_info.host = m_context.hostName;
    m_info.program = m_context.applicationName;
    m_info.database = m_database->id();
    m_info.isRunning = isRunning;
    if (isRunning) {
        m_info.requestTime = currentLocalTime();
        m_info.text = text.substr(0, 4000);
    }
    m_state.describeSession(m_info);
}

/// In a function, the statement around it goes on.
void Interpreter::endStatement()
{
    if (m_callbacks == 0)
        m_transactions.endStatement();
}

/// Runs a text to its end or to an error that ends no more than it; errors that end more are thrown on.
void Interpreter::runText(std::string_view sql, const ParserOptions &options)
{
    std::vector<Ast::StatementPtr> statements;
    try {
        statements = parseBatch(sql, options);
    } catch (EngineError &error) {
        locate(error, 1);
        if (isCaught(error))
            throw;
        return reportSyntax(error);
    }
    if (m_options.parseOnly)
        return;
    try {
        runStatements(statements);
    } catch (const EngineError &error) {
        if (!error.isReported || endsAll(error))
            throw;
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
        endStatement();
        if (!error.isReported || endsBatch(error))
            throw;
        return Flow::Next;
    } catch (...) {
        endStatement();
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
        if (owesItsEnd(statement))
            endWithoutCount();
        const bool keepsError = std::holds_alternative<Ast::RaiseError>(statement.node) ||
                                std::holds_alternative<Ast::Execute>(statement.node);
        if (!keepsError)
            m_context.lastError = 0;
        endStatement();
        return flow;
    } catch (EngineError &error) {
        report(error, statement.line, changesRows(statement) || meetsRows(statement, error));
        throw;
    }
}

/// Sends the end of a statement that has neither rows nor a count. SET NOCOUNT ON leaves it out inside
/// modules.
void Interpreter::endWithoutCount()
{
    const bool inModule = m_frame->module != nullptr;
    if (m_callbacks > 0 || (inModule && m_options.noCount))
        return;
    StatementEnd end;
    end.inProcedure = inModule;
    m_sink->endStatement(end);
}

/// Runs a statement that holds no others, again when the tables it was bound to changed before it got its
/// locks.
Interpreter::Flow Interpreter::runLeaf(const Ast::Statement &statement)
{
    while (true) {
        if (m_callbacks == 0) {
            m_context.statementTime = currentLocalTime();
            m_context.statementTimeUtc = currentUtcTime();
        }
        m_uses.clear();
        m_context.boundSources = 0;
        try {
            return std::visit([this](const auto &node) { return run(node); }, statement.node);
        } catch (const DefinitionsChanged &) {
            endStatement();
        }
    }
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
    } catch (EngineError &error) {
        report(error, m_line);
        throw;
    }
    m_context.lastError = 0;
    endStatement();
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
        } catch (EngineError &error) {
            report(error, line);
            throw;
        }
        endStatement();
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
    if (m_callbacks == 0) {
        m_context.statementTime = currentLocalTime();
        m_context.statementTimeUtc = currentUtcTime();
    }
    Value value;
    for (bool bound = false; !bound;) {
        m_uses.clear();
        m_context.boundSources = 0;
        try {
            value = evaluate(*binder().bindCondition(condition));
            bound = true;
        } catch (const DefinitionsChanged &) {
            endStatement();
        }
    }
    return !isNull(value) && std::get<std::int64_t>(value) != 0;
}

} // namespace SampleServer
