#pragma once

#include "Engine/Run/QueryExecutor.h"
#include "Engine/Session.h"

#include <functional>
#include <span>
#include <vector>

namespace SampleServer {

/// Runs procedures, functions and dynamic texts in separate frames.
class ModuleCalls
{
public:
    /// Also registers the callbacks for function calls in expressions.
    ModuleCalls(QueryExecutor &queries, ErrorReporter &errors);

    /// Runs `work` in a new frame within the nesting limit and drops its temporary tables afterwards. Throws
    /// EngineError 217.
    void inFrame(Frame &frame, const std::function<void()> &work);
    /// Runs a procedure and returns its status; afterwards the arguments of output parameters contain their
    /// values.
    std::int32_t callModule(const ModulePtr &module, const DatabasePtr &database,
                            std::vector<ProcedureArgument> &arguments);
    /// Runs a scalar function with EXEC; its result is the status.
    std::int32_t callFunctionAsProcedure(const Module &module, std::vector<ProcedureArgument> &arguments);
    void runModule(const Module &module, const DatabasePtr &database, Frame &frame);

private:
    void bindParameters(const Module &module, std::vector<ProcedureArgument> &arguments, Frame &frame);
    std::vector<ProcedureArgument *> argumentsByParameter(const Module &module,
                                                          std::vector<ProcedureArgument> &arguments) const;
    Value convertedArgument(const ProcedureArgument &argument, const SqlType &type) const;
    void bindTableParameter(const ModuleParameter &parameter, const ProcedureArgument *argument,
                            Frame &frame);
    Value callFunction(const Module &module, std::span<const Value> arguments);
    std::vector<std::vector<Value>> callTableFunction(const Module &module, std::span<const Value> arguments);
    void declareArguments(const Module &module, std::span<const Value> arguments, Frame &frame);
    void runFunction(const Module &module, Frame &frame);

    SessionContext &m_session;
    ErrorReporter &m_errors;
    NameLookup &m_names;
    TableStore &m_store;
    QueryExecutor &m_queries;
};

} // namespace SampleServer
