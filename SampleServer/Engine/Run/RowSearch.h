#pragma once

#include "Engine/Run/InsteadOf.h"
#include "Engine/Run/QueryExecutor.h"
#include "Engine/Run/RowWriter.h"

#include <optional>
#include <string>
#include <vector>

namespace SampleServer {

/// Binds the common parts of UPDATE and DELETE and finds their rows.
class RowSearch
{
public:
    /// The table to change and the tables read to find its rows.
    struct Target
    {
        Bound::TableScan scan;
        std::string alias;
        std::vector<Bound::SourcePtr> from;
    };

    /// `verb` is the name of the statement in errors.
    RowSearch(QueryExecutor &queries, const Ast::ObjectName &name,
              const std::vector<Ast::TableSourcePtr> &from, const std::vector<Ast::CommonTable> &with,
              const InsteadOf &instead, const char *verb);

    Binder &binder() { return m_binder; }
    const Target &target() const { return m_target; }
    /// Returns the values of the expressions for each row of the target that meets the condition.
    std::vector<StoredRow> find(const std::vector<Bound::ExpressionPtr> &expressions,
                                const Ast::ExpressionPtr &where, const std::optional<Ast::Top> &top);
    /// Adds every column as stored; computed ones are NULL.
    void addWholeRow(std::vector<Bound::ExpressionPtr> &expressions) const;

private:
    bool findInFrom(const Ast::ObjectName &name);
    void findScan(const Bound::Source &source);
    std::vector<StoredRow> read(const Emitted &emitted, const std::vector<Bound::ExpressionPtr> &expressions);

    QueryExecutor &m_queries;
    Binder m_binder;
    Scope m_scope;
    Target m_target;
};

} // namespace SampleServer
