#include "Engine/Catalog/CatalogObjects.h"
#include "Engine/Catalog/CatalogValues.h"
#include "Engine/Storage/SqliteConnection.h"

// The tables of indexes and foreign keys.
namespace SampleServer {

using namespace CatalogValues;

namespace {

// indexes$ and index_columns$

struct IndexRow
{
    TablePtr table;
    const TableIndex *index; ///< null: the heap
};

std::vector<IndexRow> listIndexes(const Context &context)
{
    std::vector<IndexRow> rows;
    for (const ObjectPtr &object : allObjects(context)) {
        const auto *module = dynamic_cast<const Module *>(object.get());
        const auto table = module ? module->indexed : std::dynamic_pointer_cast<const Table>(object);
        if (!table)
            continue;
        bool clustered = false;
        for (const TableIndex &index : table->indexes)
            clustered = clustered || index.isClustered();
        if (!clustered)
            rows.push_back({table, nullptr});
        for (const TableIndex &index : table->indexes)
            rows.push_back({table, &index});
    }
    return rows;
}

Value rowCount(const IndexRow &row, const Context &context)
{
    if (row.table->kind != ObjectKind::Table || !row.table->isStored)
        return number(0);
    SqliteStatement statement(context.connection, "SELECT count(*) FROM " +
                                                      SqliteConnection::schemaName(*context.database) + '.' +
                                                      row.table->physicalName());
    Value count;
    if (statement.step())
        statement.read(0, BigInt, count);
    return count;
}

} // namespace

const CatalogTable &indexesTable()
{
    static const TypedCatalogTable<IndexRow> table(
        listIndexes,
        {{"object_id", Int, [](const IndexRow &r, const Context &) { return number(r.table->id); }},
         {"name", Name,
          [](const IndexRow &r, const Context &) { return r.index ? text(r.index->name) : Value(); }},
         {"index_id", Int,
          [](const IndexRow &r, const Context &) { return number(r.index ? r.index->id : 0); }},
         {"type", TinyInt,
          [](const IndexRow &r, const Context &) {
              return number(!r.index ? 0 : r.index->isClustered() ? 1 : 2);
          }},
         {"type_desc", Text60,
          [](const IndexRow &r, const Context &) {
              return text(!r.index ? "HEAP" : r.index->isClustered() ? "CLUSTERED" : "NONCLUSTERED");
          }},
         {"is_unique", Bit,
          [](const IndexRow &r, const Context &) { return flag(r.index && r.index->unique); }},
         {"ignore_dup_key", Bit,
          [](const IndexRow &r, const Context &) { return flag(r.index && r.index->ignoresDuplicates); }},
         {"is_primary_key", Bit,
          [](const IndexRow &r, const Context &) {
              return flag(r.index && r.index->role == TableIndex::Role::PrimaryKey);
          }},
         {"is_unique_constraint", Bit,
          [](const IndexRow &r, const Context &) {
              return flag(r.index && r.index->role == TableIndex::Role::UniqueConstraint);
          }},
         {"fill_factor", TinyInt,
          [](const IndexRow &r, const Context &) { return number(r.index ? r.index->fillFactor : 0); }},
         {"is_padded", Bit,
          [](const IndexRow &r, const Context &) { return flag(r.index && r.index->padded); }},
         {"is_disabled", Bit,
          [](const IndexRow &r, const Context &) { return flag(r.index && r.index->disabled); }},
         {"has_filter", Bit,
          [](const IndexRow &r, const Context &) { return flag(r.index && r.index->filter); }},
         {"filter_definition", LongText,
          [](const IndexRow &r, const Context &) {
              return r.index ? textOrNull(r.index->filter.text) : Value();
          }},
         {"key_count", Int,
          [](const IndexRow &r, const Context &) {
              return number(r.index ? static_cast<std::int64_t>(r.index->columns.size()) : 0);
          }},
         {"rows", BigInt, rowCount}});
    return table;
}

namespace {

struct IndexColumnRow
{
    TablePtr table;
    const TableIndex *index;
    std::size_t ordinal; ///< from 1
    bool included;
    std::size_t place() const
    {
        return included ? index->included[ordinal - 1] : index->columns[ordinal - 1];
    }
};

std::vector<IndexColumnRow> listIndexColumns(const Context &context)
{
    std::vector<IndexColumnRow> rows;
    for (const IndexRow &row : listIndexes(context)) {
        for (std::size_t i = 1; row.index && i <= row.index->columns.size(); ++i)
            rows.push_back({row.table, row.index, i, false});
        for (std::size_t i = 1; row.index && i <= row.index->included.size(); ++i)
            rows.push_back({row.table, row.index, i, true});
    }
    return rows;
}

} // namespace

const CatalogTable &indexColumnsTable()
{
    using Row = IndexColumnRow;
    static const TypedCatalogTable<Row> table(
        listIndexColumns,
        {{"object_id", Int, [](const Row &r, const Context &) { return number(r.table->id); }},
         {"index_id", Int, [](const Row &r, const Context &) { return number(r.index->id); }},
         {"index_column_id", Int,
          [](const Row &r, const Context &) {
              return number(
                  static_cast<std::int64_t>(r.ordinal + (r.included ? r.index->columns.size() : 0)));
          }},
         {"column_id", Int,
          [](const Row &r, const Context &) { return number(r.table->columns[r.place()].id); }},
         {"key_ordinal", TinyInt,
          [](const Row &r, const Context &) {
              return number(r.included ? 0 : static_cast<std::int64_t>(r.ordinal));
          }},
         {"is_descending_key", Bit,
          [](const Row &r, const Context &) {
              return flag(!r.included && r.index->descending[r.ordinal - 1]);
          }},
         {"is_included_column", Bit, [](const Row &r, const Context &) { return flag(r.included); }}});
    return table;
}

namespace {

// foreign_keys$ and foreign_key_columns$

struct ForeignKeyRow
{
    TablePtr table;
    const ForeignKey *key;
    std::size_t ordinal = 1;
};

std::vector<ForeignKeyRow> listForeignKeys(const Context &context)
{
    std::vector<ForeignKeyRow> rows;
    for (const ObjectPtr &object : context.database->objects())
        if (const auto table = std::dynamic_pointer_cast<const Table>(object))
            for (const ForeignKey &key : table->foreignKeys)
                rows.push_back({table, &key});
    return rows;
}

std::vector<ForeignKeyRow> listForeignKeyColumns(const Context &context)
{
    std::vector<ForeignKeyRow> rows;
    for (const ForeignKeyRow &row : listForeignKeys(context))
        for (std::size_t i = 1; i <= row.key->columns.size(); ++i)
            rows.push_back({row.table, row.key, i});
    return rows;
}

Value keyIndex(const ForeignKeyRow &row, const Context &context)
{
    const TablePtr parent = context.database->findTable(row.key->referencedTable);
    for (const TableIndex &index : parent ? parent->indexes : std::vector<TableIndex>()) {
        std::vector<int> ids;
        for (const std::size_t column : index.columns)
            ids.push_back(parent->columns[column].id);
        if (index.unique && ids == row.key->referencedColumns)
            return number(index.id);
    }
    return number(1);
}

} // namespace

const CatalogTable &foreignKeysTable()
{
    using Row = ForeignKeyRow;
    static const TypedCatalogTable<Row> table(
        listForeignKeys,
        {{"object_id", Int, [](const Row &r, const Context &) { return number(r.key->constraint.id); }},
         {"parent_object_id", Int, [](const Row &r, const Context &) { return number(r.table->id); }},
         {"referenced_object_id", Int,
          [](const Row &r, const Context &) { return number(r.key->referencedTable); }},
         {"key_index_id", Int, keyIndex},
         {"delete_referential_action", TinyInt,
          [](const Row &r, const Context &) { return number(static_cast<int>(r.key->onDelete)); }},
         {"update_referential_action", TinyInt,
          [](const Row &r, const Context &) { return number(static_cast<int>(r.key->onUpdate)); }}});
    return table;
}

const CatalogTable &foreignKeyColumnsTable()
{
    using Row = ForeignKeyRow;
    static const TypedCatalogTable<Row> table(
        listForeignKeyColumns,
        {{"constraint_object_id", Int,
          [](const Row &r, const Context &) { return number(r.key->constraint.id); }},
         {"constraint_column_id", Int,
          [](const Row &r, const Context &) { return number(static_cast<std::int64_t>(r.ordinal)); }},
         {"parent_object_id", Int, [](const Row &r, const Context &) { return number(r.table->id); }},
         {"parent_column_id", Int,
          [](const Row &r, const Context &) {
              return number(r.table->columns[r.key->columns[r.ordinal - 1]].id);
          }},
         {"referenced_object_id", Int,
          [](const Row &r, const Context &) { return number(r.key->referencedTable); }},
         {"referenced_column_id", Int,
          [](const Row &r, const Context &) { return number(r.key->referencedColumns[r.ordinal - 1]); }}});
    return table;
}

} // namespace SampleServer
