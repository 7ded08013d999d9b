#pragma once

#include "Engine/Run/CollectingSink.h"
#include "Engine/Run/ModuleExecutor.h"
#include "Engine/Run/TriggerRunner.h"

#include <vector>

namespace SampleServer {

class InsertRun;

/// Runs the statements that change rows.
class ChangeExecutor
{
public:
    /// `modules` runs the EXEC of INSERT ... EXEC.
    ChangeExecutor(QueryExecutor &queries, TriggerRunner &triggers, ModuleExecutor &modules)
        : m_session(queries.session())
        , m_names(queries.names())
        , m_queries(queries)
        , m_triggers(triggers)
        , m_modules(modules)
    {
    }

    void run(const Ast::Insert &node);
    void run(const Ast::Update &node);
    void run(const Ast::Delete &node);
    void run(const Ast::TruncateTable &node);

private:
    void insertFrom(const Bound::Query &query, const Table &table, InsertRun &insert,
                    const std::vector<std::size_t> &targets, bool readsItself);
    void insertCollected(const std::vector<CollectingSink::Row> &rows, const Table &table, InsertRun &insert,
                         const std::vector<std::size_t> &targets);

    SessionContext &m_session;
    NameLookup &m_names;
    QueryExecutor &m_queries;
    TriggerRunner &m_triggers;
    ModuleExecutor &m_modules;
};

} // namespace SampleServer
