#pragma once

#include "Engine/Run/QueryExecutor.h"

namespace SampleServer {

/// Runs CREATE, ALTER and DROP INDEX.
class IndexExecutor
{
public:
    explicit IndexExecutor(QueryExecutor &queries)
        : m_session(queries.session())
        , m_names(queries.names())
        , m_store(queries.store())
        , m_queries(queries)
    {
    }

    void run(const Ast::CreateIndex &node);
    void run(const Ast::AlterIndex &node);
    void run(const Ast::DropIndex &node);

    /// Creates the storage of an index. Throws EngineError 1505 if rows have equal keys.
    void createIndex(const Bound::TableScan &scan, TableIndex &index);
    /// Throws EngineError 1505 if rows of the table have equal keys; `statement` is named in the error.
    void requireUniqueRows(const Bound::TableScan &scan, const TableIndex &index, const char *statement);

private:
    void createViewIndex(const Ast::CreateIndex &node, const FoundObject &found);
    bool dropViewIndex(const Ast::DropIndex::Item &item);

    SessionContext &m_session;
    NameLookup &m_names;
    TableStore &m_store;
    QueryExecutor &m_queries;
};

} // namespace SampleServer
