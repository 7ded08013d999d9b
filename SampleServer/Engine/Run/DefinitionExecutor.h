#pragma once

#include "Engine/Run/ModuleDefiner.h"
#include "Engine/Run/TableAlterer.h"

#include <string>

namespace SampleServer {

/// Runs CREATE, ALTER and DROP: tables, schemas, types, synonyms and databases itself, the rest with the
/// class for each kind.
class DefinitionExecutor
{
public:
    DefinitionExecutor(QueryExecutor &queries, TriggerRunner &triggers)
        : m_session(queries.session())
        , m_names(queries.names())
        , m_store(queries.store())
        , m_queries(queries)
        , m_indexes(queries)
        , m_alterer(queries, triggers, m_indexes)
        , m_definer(queries)
    {
    }

    void run(const Ast::CreateTable &node);
    void run(const Ast::AlterTable &node) { m_alterer.run(node); }
    void run(const Ast::DropTable &node);
    void run(const Ast::CreateIndex &node) { m_indexes.run(node); }
    void run(const Ast::AlterIndex &node) { m_indexes.run(node); }
    void run(const Ast::DropIndex &node) { m_indexes.run(node); }
    void run(const Ast::CreateModule &node) { m_definer.run(node); }
    void run(const Ast::DropObjects &node);
    void run(const Ast::CreateSchema &node);
    void run(const Ast::CreateType &node);
    void run(const Ast::CreateSynonym &node);
    void run(const Ast::CreateDatabase &node);
    void run(const Ast::AlterDatabase &node);
    void run(const Ast::DropDatabase &node);

private:
    Bound::TableScan tableToDrop(const Ast::ObjectName &name);
    void dropSchema(const std::string &name, bool ifExists);
    void dropType(const Ast::ObjectName &name, bool ifExists);

    SessionContext &m_session;
    NameLookup &m_names;
    TableStore &m_store;
    QueryExecutor &m_queries;
    IndexExecutor m_indexes;
    TableAlterer m_alterer;
    ModuleDefiner m_definer;
};

} // namespace SampleServer
