#include "Engine/Run/Interpreter.h"
#include "Engine/Errors.h"
#include "Engine/Parse/NameText.h"
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

} // namespace

Interpreter::Interpreter(std::shared_ptr<Server> server, ServerState &state, std::string_view login,
                         std::string_view database)
    : m_session(std::move(server), state, login)
    , m_errors(m_session)
    , m_store(m_session)
    , m_names(m_session, m_store)
    , m_queries(m_names, m_errors, m_session, m_store)
    , m_calls(m_queries, m_errors)
    , m_triggers(m_queries, m_calls)
    , m_modules(m_queries, m_calls)
    , m_control(m_queries, m_triggers, m_modules, m_errors)
{
    m_session.runner = &m_control;
    m_session.evaluation.spid = state.takeProcessId();
    m_session.database = state.databases.find(database.empty() ? "master" : database);
    if (!m_session.database) {
        state.returnProcessId(m_session.evaluation.spid);
        throw cannotOpen(database);
    }
    ++m_session.database->users;
    m_session.evaluation.database = m_session.database->name();
    m_info.loginTime = m_info.requestTime = currentLocalTime();
    describeSession({}, false);
}

Interpreter::~Interpreter()
{
    m_session.transactions.rollback();
    --m_session.database->users;
    m_session.state.returnProcessId(m_session.evaluation.spid);
}

void Interpreter::runBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink)
{
    runRequest(sink, sql, [&] {
        for (const BatchParameter &parameter : parameters)
            m_session.batch.variables.declare(parameter.name, parameter.type, parameter.value);
        m_control.runText(sql, {m_session.options.quotedIdentifiers, m_session.batch.variables.names(),
                                m_session.evaluation.edition});
    });
    for (BatchParameter &parameter : parameters)
        parameter.value = m_session.batch.variables.find(parameter.name)->value;
}

/// Runs a client request: resets the variables before it and ends open state after it.
void Interpreter::runRequest(ResultSink &sink, std::string_view text, const std::function<void()> &work)
{
    describeSession(text, true);
    const ScopedValue<ResultSink *> current(m_session.sink, &sink);
    m_session.connection.watch(&sink);
    m_session.transactions.watch(&sink);
    m_session.batch.variables = {};
    const auto leave = [this] {
        m_session.connection.watch(nullptr);
        m_session.transactions.watch(nullptr);
        m_store.dropTables(m_session.batch.tables, true);
        m_session.transactions.endStatement();
        m_session.connection.detachUnused();
        describeSession({}, false);
    };
    try {
        try {
            work();
        } catch (const EngineError &) {
            // Already reported at its origin.
        }
        m_errors.endDoomedTransaction();
    } catch (const std::bad_alloc &) {
        m_errors.reportLackOfMemory();
    } catch (const BatchCancelled &) {
        // The client requested the cancellation; its session continues.
    } catch (...) {
        leave();
        throw;
    }
    leave();
}

/// Publishes the session's activity to other sessions; without a text the last one is kept.
void Interpreter::describeSession(std::string_view text, bool isRunning)
{
    m_info.id = m_session.evaluation.spid;
    m_info.login = m_session.evaluation.loginName;
    m_info.host = m_session.evaluation.hostName;
    m_info.program = m_session.evaluation.applicationName;
    m_info.database = m_session.database->id();
    m_info.isRunning = isRunning;
    if (isRunning) {
        m_info.requestTime = currentLocalTime();
        m_info.text = text.substr(0, 4000);
    }
    m_session.state.describeSession(m_info);
}

void Interpreter::callProcedure(const std::string &name, std::span<const ProcedureArgument> arguments,
                                ResultSink &sink)
{
    std::vector<ProcedureArgument> values(arguments.begin(), arguments.end());
    std::int32_t status = 0;
    bool failed = false;
    runRequest(sink, name, [&] {
        try {
            status = m_modules.call(nameFromText(name), values);
        } catch (EngineError &error) {
            failed = true;
            m_errors.report(error, 1);
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

} // namespace SampleServer
