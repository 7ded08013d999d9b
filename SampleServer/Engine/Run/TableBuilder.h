#pragma once

#include "Engine/Catalog/Catalog.h"
#include "Engine/Parse/AstDefinitions.h"

namespace SampleServer {

class Binder;
class QueryExecutor;

/// Creates a table definition from a syntax tree with the server's checks. Throws EngineError.
class TableBuilder
{
public:
    /// Starts with a table that may already have columns; its schema and name are set.
    TableBuilder(QueryExecutor &queries, Table table, DatabasePtr database);

    void add(const Ast::CreateTable &definition);
    void addColumn(const Ast::ColumnDefinition &definition);
    void addConstraint(const Ast::Constraint &constraint, bool trusted = true);
    void addIndex(const Ast::CreateIndex &definition);
    /// Binds the computed columns over the stored ones and sets their types.
    void typeComputedColumns();
    Table take() { return std::move(m_table); }

private:
    ConstraintName nameOf(const Ast::Constraint &constraint, const char *prefix) const;
    std::size_t requireColumn(const std::string &name, int number) const;
    void makeConstraint(const Ast::Constraint &constraint, bool trusted);
    SqlType computedType(Binder &types, const TableColumn &column) const;
    void addKey(const Ast::Constraint &constraint);
    void addForeignKey(const Ast::Constraint &constraint, bool trusted);
    void addCheck(const Ast::Constraint &constraint, bool trusted);
    void addDefault(const Ast::Constraint &constraint);
    TableIndex makeIndex(const std::vector<Ast::KeyColumn> &columns, bool clustered,
                         const Ast::IndexOptions &options) const;

    QueryExecutor &m_queries;
    Table m_table;
    const DatabasePtr m_database;      ///< null for a temporary table
    std::set<std::string> m_undecided; ///< folded names of new columns that may still become NOT NULL
};

} // namespace SampleServer
