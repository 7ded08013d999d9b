#pragma once

#include "Engine/Run/QueryExecutor.h"

#include <string>

namespace SampleServer {

/// Creates, alters and drops views, procedures, functions, triggers and synonyms.
class ModuleDefiner
{
public:
    explicit ModuleDefiner(QueryExecutor &queries)
        : m_session(queries.session())
        , m_names(queries.names())
        , m_store(queries.store())
        , m_queries(queries)
    {
    }

    void run(const Ast::CreateModule &node);
    /// `kind` is the keyword after DROP, in upper case. Throws EngineError 3701 and 3705.
    void dropObject(const Ast::ObjectName &name, const std::string &kind, bool ifExists);

private:
    void defineModule(const Ast::CreateModule &node);
    void describeModule(Module &module, const DatabasePtr &database);

    SessionContext &m_session;
    NameLookup &m_names;
    TableStore &m_store;
    QueryExecutor &m_queries;
};

} // namespace SampleServer
