#pragma once

#include "Engine/Run/ControlExecutor.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace SampleServer {

/// A session's executors and their shared state. Runs the client's requests.
class Interpreter
{
public:
    /// Throws EngineError 4060 if the database does not exist.
    Interpreter(std::shared_ptr<Server> server, ServerState &state, std::string_view login,
                std::string_view database);
    ~Interpreter();
    Interpreter(const Interpreter &) = delete;
    Interpreter &operator=(const Interpreter &) = delete;

    /// Runs a batch with `parameters` as declared variables; afterwards each contains its last value.
    void runBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink);
    /// Runs a procedure by name and sends its status and output through the sink.
    void callProcedure(const std::string &name, std::span<const ProcedureArgument> arguments,
                       ResultSink &sink);

    const std::string &database() const { return m_session.evaluation.database; }
    EvaluationContext &context() { return m_session.evaluation; }

private:
    void runRequest(ResultSink &sink, std::string_view text, const std::function<void()> &work);
    void describeSession(std::string_view text, bool isRunning);

    SessionContext m_session;
    ErrorReporter m_errors;
    TableStore m_store;
    NameLookup m_names;
    QueryExecutor m_queries;
    ModuleCalls m_calls;
    TriggerRunner m_triggers;
    ModuleExecutor m_modules;
    ControlExecutor m_control;
    SessionInfo m_info;
};

} // namespace SampleServer
