#pragma once

#include "Engine/Run/IndexExecutor.h"
#include "Engine/Run/TriggerRunner.h"

namespace SampleServer {

/// Runs ALTER TABLE.
class TableAlterer
{
public:
    TableAlterer(QueryExecutor &queries, TriggerRunner &triggers, IndexExecutor &indexes)
        : m_session(queries.session())
        , m_names(queries.names())
        , m_store(queries.store())
        , m_queries(queries)
        , m_triggers(triggers)
        , m_indexes(indexes)
    {
    }

    void run(const Ast::AlterTable &node);

private:
    Bound::TableScan tableToAlter(const Ast::ObjectName &name);
    void addToTable(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void addStoredColumn(const Bound::TableScan &scan, const Table &changed, const TableColumn &column,
                         bool hasRows, bool withValues);
    void alterColumn(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void dropFromTable(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void dropConstraint(const Bound::TableScan &scan, Table &changed, const std::string &name, bool ifExists);
    void enableConstraints(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void enableTriggers(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void fillColumn(const Bound::TableScan &scan, const TableColumn &column,
                    const Bound::ExpressionPtr &value);
    void requireConstraints(const Bound::TableScan &scan, const Table &before);

    SessionContext &m_session;
    NameLookup &m_names;
    TableStore &m_store;
    QueryExecutor &m_queries;
    TriggerRunner &m_triggers;
    IndexExecutor &m_indexes;
};

} // namespace SampleServer
