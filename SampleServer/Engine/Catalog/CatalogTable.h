#pragma once

#include "Engine/Catalog/Catalog.h"
#include "Engine/ServerState.h"
#include "Engine/Storage/RowProvider.h"
#include "Types/ResultSink.h"

#include <string_view>
#include <unordered_map>

namespace SampleServer {

/// The input of catalog tables.
struct CatalogContext
{
    DatabasePtr database;
    ServerState &server;
    SqliteConnection &connection;
};

/// A catalog table whose rows are computed when they are read. The catalog views are SQL queries over these
/// tables.
class CatalogTable
{
public:
    virtual ~CatalogTable() = default;
    virtual const std::vector<ColumnInfo> &columns() const = 0;
    virtual std::shared_ptr<const RowProvider> rows(const CatalogContext &context) const = 0;
};

// Tables with separate source files
const CatalogTable &indexesTable();
const CatalogTable &indexColumnsTable();
const CatalogTable &foreignKeysTable();
const CatalogTable &foreignKeyColumnsTable();
const CatalogTable &dependenciesTable();

/// Returns the table with this name ("objects$"); null if there is none.
const CatalogTable *findCatalogTable(std::string_view name);

/// Rows by number, with an index on every compared column.
class IndexedRows : public RowProvider
{
public:
    bool isIndexed() const override { return true; }
    std::unique_ptr<RowCursor> open(SqliteConnection &connection) const override;

    virtual std::size_t size() const = 0;
    virtual const SqlType &type(std::size_t column) const = 0;
    virtual Value value(std::size_t row, std::size_t column) const = 0;

    /// Returns the rows with this column value; null if values of its kind are not indexed.
    const std::vector<std::size_t> *find(std::size_t column, sqlite3_value *value) const;

private:
    using Index = std::unordered_map<std::string, std::vector<std::size_t>>;
    mutable std::unordered_map<std::size_t, Index> m_indexes; ///< by column; used by one thread at a time
};

/// A table whose rows are objects of a type and whose columns are functions of them.
template <typename Row>
class TypedCatalogTable : public CatalogTable
{
public:
    struct Column
    {
        const char *name;
        SqlType type;
        Value (*value)(const Row &row, const CatalogContext &context);
    };
    using List = std::vector<Row> (*)(const CatalogContext &context);

    TypedCatalogTable(List list, std::vector<Column> columns)
        : m_list(list)
        , m_columns(std::move(columns))
    {
        for (const Column &column : m_columns) {
            ColumnInfo info;
            info.name = column.name;
            info.type = column.type;
            m_infos.push_back(std::move(info));
        }
    }

    const std::vector<ColumnInfo> &columns() const override { return m_infos; }
    std::shared_ptr<const RowProvider> rows(const CatalogContext &context) const override
    {
        return std::make_shared<const Rows>(*this, context);
    }

private:
    class Rows : public IndexedRows
    {
    public:
        Rows(const TypedCatalogTable &table, const CatalogContext &context)
            : m_table(table)
            , m_context(context)
            , m_rows(table.m_list(context))
        {
        }
        std::size_t size() const override { return m_rows.size(); }
        const SqlType &type(std::size_t column) const override { return m_table.m_columns[column].type; }
        Value value(std::size_t row, std::size_t column) const override
        {
            return column < m_table.m_columns.size() ? m_table.m_columns[column].value(m_rows[row], m_context)
                                                     : Value();
        }

    private:
        const TypedCatalogTable &m_table;
        const CatalogContext m_context;
        const std::vector<Row> m_rows;
    };

    const List m_list;
    const std::vector<Column> m_columns;
    std::vector<ColumnInfo> m_infos;
};

} // namespace SampleServer
