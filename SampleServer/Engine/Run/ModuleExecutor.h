#pragma once

#include "Engine/Run/CollectingSink.h"
#include "Engine/Run/SystemProcedures.h"

#include <string_view>
#include <vector>

namespace SampleServer {

/// Runs EXEC of procedures, texts and sp_executesql.
class ModuleExecutor
{
public:
    ModuleExecutor(QueryExecutor &queries, ModuleCalls &calls)
        : m_session(queries.session())
        , m_names(queries.names())
        , m_store(queries.store())
        , m_queries(queries)
        , m_calls(calls)
        , m_system(queries, calls)
    {
    }

    void run(const Ast::Execute &node);
    /// Runs INSERT ... EXEC and returns the rows after the text or procedure has finished. Throws EngineError
    /// 8164 if nested.
    std::vector<CollectingSink::Row> collectExecuted(const Ast::Execute &node);
    /// Runs a procedure and returns its status. Throws EngineError 2812 if it does not exist.
    std::int32_t call(const Ast::ObjectName &name, std::vector<ProcedureArgument> &arguments);

private:
    void executeText(std::string_view sql, Variables &variables);
    void executeSql(const Ast::Execute &node);
    std::vector<ProcedureArgument> evaluateArguments(const Ast::Execute &node);

    SessionContext &m_session;
    NameLookup &m_names;
    TableStore &m_store;
    QueryExecutor &m_queries;
    ModuleCalls &m_calls;
    SystemProcedures m_system;
};

} // namespace SampleServer
