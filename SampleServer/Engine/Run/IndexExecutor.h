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

    /// Makes the storage of an index of a table. Throws EngineError 1505 when rows have the same key.
    void createIndex(const Bound::TableScan &scan, TableIndex &index);
    /// Throws EngineError 1505 when rows of the table have the same key; `statement` is what it names.
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
