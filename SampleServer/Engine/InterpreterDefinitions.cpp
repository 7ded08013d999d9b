#include "Engine/Emitter.h"
#include "Engine/Errors.h"
#include "Engine/Interpreter.h"
#include "Engine/TypeRules.h"
#include "Types/Collation.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

namespace {

bool isTemporary(const std::string &name)
{
    return name.starts_with('@') || (name.starts_with('#') && !name.starts_with("##"));
}

EngineError nameTaken(const std::string &name)
{
    return {2714, 16, 6, "There is already an object named '" + name + "' in the database.",
            ErrorEffect::EndsBatch};
}

void requireIdentityType(const TableColumn &column)
{
    const bool whole = (isInteger(column.type.id) && column.type.id != TypeId::Bit) ||
                       (column.type.id == TypeId::Decimal && column.type.scale == 0);
    if (!whole || column.nullable)
        throw EngineError(
            2749, 16, 2,
            "Identity column '" + column.name +
                "' must be of data type int, bigint, smallint, tinyint, or decimal or numeric with a scale "
                "of 0, unencrypted, and constrained to be nonnullable.",
            ErrorEffect::EndsBatch);
}

/// A name for a constraint that was not given one, as the server makes them up.
std::string madeUpName(const char *prefix, const std::string &table)
{
    char number[20];
    std::snprintf(number, sizeof number, "%016llX",
                  static_cast<unsigned long long>(newObjectId()) * 0x9E3779B97F4A7C15u);
    return std::string(prefix) + "__" + utf16Substring(table, 0, 8) + "__" + number;
}

TableKey makeKey(const Ast::KeyDefinition &definition, Table &table)
{
    TableKey key;
    key.primary = definition.primary;
    key.name =
        definition.name.empty() ? madeUpName(definition.primary ? "PK" : "UQ", table.name) : definition.name;
    for (const std::string &name : definition.columns) {
        const auto column = table.findColumn(name);
        if (!column)
            throw EngineError(1911, 16, 1,
                              "Column name '" + name + "' does not exist in the target table or view.",
                              ErrorEffect::EndsBatch);
        const SqlType &type = table.columns[*column].type;
        if (isLegacyLob(type.id) || type.length == SqlType::Max || type.id == TypeId::Xml)
            throw EngineError(1919, 16, 1,
                              "Column '" + name + "' in table '" + table.name +
                                  "' is of a type that is invalid for use as a key column in an index.",
                              ErrorEffect::EndsBatch);
        key.columns.push_back(*column);
    }
    return key;
}

} // namespace

DatabasePtr Interpreter::placeOfNewTable(const Ast::ObjectName &name)
{
    if (isTemporary(name.object())) {
        if (m_frame->tables.find("dbo", name.object()))
            throw nameTaken(name.object());
        return nullptr;
    }
    const DatabasePtr database = findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
    if (!database)
        throw EngineError(911, 16, 1,
                          "Database '" + name.qualifier(2) +
                              "' does not exist. Make sure that the name is entered correctly.",
                          ErrorEffect::EndsBatch);
    const std::string schema = name.qualifier(1);
    if (!schema.empty() && foldedName(schema) != "DBO")
        throw EngineError(2760, 16, 1,
                          "The specified schema name \"" + schema +
                              "\" either does not exist or you do not have permission to use it.",
                          ErrorEffect::EndsBatch);
    m_transactions.changeDefinitions(*database);
    if (database->findTable("dbo", name.object()))
        throw nameTaken(name.object());
    return database;
}

Bound::TableScan Interpreter::createTable(Table definition, const DatabasePtr &database)
{
    definition.id = newObjectId();
    definition.database = database ? database->id() : 0;
    const TablePtr table = std::make_shared<const Table>(std::move(definition));
    if (database)
        m_connection.attach(database);
    const Bound::TableScan scan{table, database ? SqliteConnection::schemaName(*database) : "temp", database};
    std::string columns;
    for (const TableColumn &column : table->columns)
        if (!column.computed)
            columns += (columns.empty() ? "" : ", ") + column.physicalName() + collationOf(column.type);
    m_connection.execute("CREATE TABLE " + scan.schema + '.' + table->physicalName() + '(' + columns + ')');
    for (const TableKey &key : table->keys) {
        std::string keyColumns;
        for (const std::size_t column : key.columns)
            keyColumns += (keyColumns.empty() ? "" : ", ") + table->columns[column].physicalName();
        m_connection.execute("CREATE UNIQUE INDEX " + scan.schema + ".k" + std::to_string(newObjectId()) +
                             " ON " + table->physicalName() + '(' + keyColumns + ')');
    }
    if (database) {
        database->insertTable(table);
        m_transactions.onRollback([database, table] { database->eraseTable(*table); });
    } else {
        m_frame->tables.insert(table);
        m_transactions.onRollback([this, table] { eraseTemporary(*table); });
    }
    return scan;
}

Interpreter::Flow Interpreter::run(const Ast::CreateTable &node)
{
    const DatabasePtr database = placeOfNewTable(node.name);
    Table table = buildTable(node);
    Transactions::Change change(m_transactions);
    createTable(std::move(table), database);
    change.finish();
    m_context.rowCount = 0;
    return Flow::Next;
}

Table Interpreter::buildTable(const Ast::CreateTable &node)
{
    Table table;
    table.name = node.name.object();
    for (const Ast::ColumnDefinition &definition : node.columns) {
        TableColumn column;
        column.name = definition.name;
        column.id = static_cast<int>(table.columns.size()) + 1;
        if (table.findColumn(column.name))
            throw EngineError(2705, 16, 3,
                              "Column names in each table must be unique. Column name '" + column.name +
                                  "' in table '" + table.name + "' is specified more than once.",
                              ErrorEffect::EndsBatch);
        if (!definition.computed)
            column.type = columnType(definition, column.id);
        column.nullable = definition.nullable.value_or(!definition.identity);
        column.identity = definition.identity.has_value();
        column.defaultValue = definition.defaultValue;
        column.computed = definition.computed;
        if (definition.identity) {
            if (table.identity)
                throw EngineError(2744, 16, 2,
                                  "Multiple identity columns specified for table '" + table.name +
                                      "'. Only one identity column per table is allowed.",
                                  ErrorEffect::EndsBatch);
            requireIdentityType(column);
            table.identity =
                std::make_shared<IdentityCounter>(definition.identity->seed, definition.identity->increment);
        }
        table.columns.push_back(std::move(column));
    }
    for (const Ast::KeyDefinition &definition : node.keys) {
        TableKey key = makeKey(definition, table);
        if (key.primary) {
            if (std::any_of(table.keys.begin(), table.keys.end(),
                            [](const TableKey &other) { return other.primary; }))
                throw EngineError(
                    8110, 16, 0, "Cannot add multiple PRIMARY KEY constraints to table '" + table.name + "'.",
                    ErrorEffect::EndsBatch);
            for (const std::size_t column : key.columns) {
                if (node.columns[column].nullable == true)
                    throw EngineError(8111, 16, 1,
                                      "Cannot define PRIMARY KEY constraint on nullable column in table '" +
                                          table.name + "'.",
                                      ErrorEffect::EndsBatch);
                table.columns[column].nullable = false;
            }
        }
        table.keys.push_back(std::move(key));
    }
    typeComputedColumns(table);
    return table;
}

SqlType Interpreter::columnType(const Ast::ColumnDefinition &definition, int number) const
{
    try {
        return resolveType(definition.type, TypePlace::Declaration);
    } catch (EngineError &error) {
        if (error.message.number == 2715)
            throw Errors::unknownType(definition.type.name.toString(), number);
        throw;
    }
}

/// Finds the types of computed columns by binding them over the stored ones.
void Interpreter::typeComputedColumns(Table &table)
{
    Scope scope;
    ScopeSource source;
    source.name = table.name;
    for (const TableColumn &column : table.columns) {
        if (column.computed)
            continue;
        ScopeColumn entry;
        entry.info.name = column.name;
        entry.info.type = column.type;
        entry.info.nullable = column.nullable;
        entry.source = "s0";
        entry.column = column.physicalName();
        source.columns.push_back(std::move(entry));
    }
    scope.sources.push_back(std::move(source));
    Binder types = binder();
    types.enterScope(scope);
    for (TableColumn &column : table.columns) {
        if (!column.computed)
            continue;
        const auto bound = types.bindValue(*column.computed);
        column.type = bound->type;
        column.nullable = true;
    }
}

Interpreter::Flow Interpreter::run(const Ast::DropTable &node)
{
    for (const Ast::ObjectName &name : node.names) {
        const bool temporary = isTemporary(name.object());
        const DatabasePtr database =
            temporary ? nullptr
                      : findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
        if (database)
            m_transactions.changeDefinitions(*database);
        const Bound::TableScan scan = temporary || database ? findOrNull(name) : Bound::TableScan();
        if (!scan.table) {
            if (node.ifExists)
                continue;
            throw EngineError(3701, 11, 5,
                              "Cannot drop the table '" + name.toString() +
                                  "', because it does not exist or you do not have permission.");
        }
        if (database)
            m_connection.attach(database);
        Transactions::Change change(m_transactions);
        m_connection.execute("DROP TABLE " + scan.schema + '.' + scan.table->physicalName());
        const TablePtr table = scan.table;
        if (database) {
            database->eraseTable(*table);
            m_transactions.onRollback([database, table] { database->insertTable(table); });
        } else {
            eraseTemporary(*table);
            m_transactions.onRollback([this, table] { m_frame->tables.insert(table); });
        }
        change.finish();
    }
    m_context.rowCount = 0;
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::CreateDatabase &node)
{
    if (m_transactions.isOpen())
        throw EngineError(226, 16, 6,
                          "CREATE DATABASE statement not allowed within multi-statement transaction.");
    if (!m_state.databases.create(node.name))
        throw EngineError(1801, 16, 3,
                          "Database '" + node.name + "' already exists. Choose a different database name.",
                          ErrorEffect::EndsBatch);
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::DropDatabase &node)
{
    if (m_transactions.isOpen())
        throw EngineError(226, 16, 6,
                          "DROP DATABASE statement not allowed within multi-statement transaction.");
    for (const std::string &name : node.names) {
        const DatabasePtr database = m_state.databases.find(name);
        if (!database) {
            if (node.ifExists)
                continue;
            throw EngineError(3701, 11, 1,
                              "Cannot drop the database '" + name +
                                  "', because it does not exist or you do not have permission.");
        }
        if (database->id() <= 4)
            throw EngineError(3708, 16, 4,
                              "Cannot drop the database '" + name + "' because it is a system database.");
        if (database->users > 0)
            throw EngineError(3702, 16, 4,
                              "Cannot drop database \"" + name + "\" because it is currently in use.");
        m_transactions.changeDefinitions(
            *database); // until the last statement that uses its tables has ended
        m_state.databases.erase(*database);
    }
    return Flow::Next;
}

} // namespace SampleServer
