#include "Engine/Emit/Emitter.h"
#include "Engine/Errors.h"
#include "Engine/Run/Interpreter.h"
#include "Engine/Run/TableBuilder.h"
#include "Types/Collation.h"

// CREATE and DROP of tables, schemas, types, synonyms and databases.
namespace SampleServer {

namespace {

EngineError nameTaken(const std::string &name)
{
    return {2714, 16, 6, "There is already an object named '" + name + "' in the database.",
            ErrorEffect::EndsBatch};
}

EngineError noSuchDatabase(const std::string &name)
{
    return {911, 16, 1,
            "Database '" + name + "' does not exist. Make sure that the name is entered correctly.",
            ErrorEffect::EndsBatch};
}

EngineError cannotDrop(const std::string &kind, const std::string &name, int state = 5)
{
    return {3701, 11, state,
            "Cannot drop the " + kind + " '" + name +
                "', because it does not exist or you do not have permission."};
}

} // namespace

Interpreter::Place Interpreter::placeOfNew(const Ast::ObjectName &name, bool mayExist)
{
    if (name.isTemporaryTable()) {
        if (m_frame->tables.find(name.object()))
            throw nameTaken(name.object());
        return {nullptr, "dbo"};
    }
    return placeOfPermanent(name, mayExist);
}

Interpreter::Place Interpreter::placeOfPermanent(const Ast::ObjectName &name, bool mayExist)
{
    requireOutsideFunction("CREATE");
    Place place;
    place.database = findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
    if (!place.database)
        throw noSuchDatabase(name.qualifier(2));
    m_transactions.changeDefinitions(*place.database);
    if (const std::string schema = name.qualifier(1); !schema.empty()) {
        const auto found = place.database->findSchema(schema);
        if (!found)
            throw EngineError(2760, 16, 1,
                              "The specified schema name \"" + schema +
                                  "\" either does not exist or you do not have permission to use it.",
                              ErrorEffect::EndsBatch);
        place.schema = found->name;
    }
    if (!mayExist && place.database->isTaken(place.schema, name.object()))
        throw nameTaken(name.object());
    return place;
}

Bound::TableScan Interpreter::scanOf(const TablePtr &table, const DatabasePtr &database) const
{
    return {table, database ? SqliteConnection::schemaName(*database) : "temp", database};
}

/// Makes SQLite's table and its indexes.
void Interpreter::createStorage(Table &definition, const DatabasePtr &database)
{
    if (database)
        m_connection.attach(database);
    std::string columns;
    for (const TableColumn &column : definition.columns)
        if (!column.computed)
            columns += (columns.empty() ? "" : ", ") + column.physicalName() + collationOf(column.type);
    const std::string schema = database ? SqliteConnection::schemaName(*database) : "temp";
    m_connection.execute("CREATE TABLE " + schema + '.' + definition.physicalName() + '(' + columns + ')');
    for (TableIndex &index : definition.indexes)
        createPhysicalIndex({std::make_shared<const Table>(definition), schema, database}, index);
}

/// The table with its storage, which it may not have had yet. Null when it was dropped meanwhile.
TablePtr Interpreter::stored(const TablePtr &table, const DatabasePtr &database)
{
    if (!table || table->isStored)
        return table;
    m_transactions.changeDefinitions(*database);
    const TablePtr now = database->findTable(table->id);
    if (!now || now->isStored)
        return now;
    Transactions::Change change(m_transactions);
    auto result = std::make_shared<Table>(*now);
    result->isStored = true;
    createStorage(*result, database);
    replaceObject(database, now, result);
    change.finish();
    return result;
}

Bound::TableScan Interpreter::createTable(Table definition, const DatabasePtr &database)
{
    if (definition.id == 0)
        definition.id = newObjectId();
    definition.storage = definition.id;
    definition.database = database ? database->id() : 0;
    definition.created = definition.modified = m_context.statementTime;
    createStorage(definition, database);
    const TablePtr table = std::make_shared<const Table>(std::move(definition));
    if (database) {
        database->insert(table);
        m_transactions.onRollback([database, table] { database->erase(*table); });
    } else {
        m_frame->tables.insert(table);
        m_transactions.onRollback([this, table] { eraseTemporary(*table); });
    }
    return scanOf(table, database);
}

Interpreter::Flow Interpreter::run(const Ast::CreateTable &node)
{
    const Place place = placeOfNew(node.name);
    Table table;
    table.name = node.name.object();
    table.schema = place.schema;
    table.id = newObjectId();
    TableBuilder builder(*this, std::move(table), place.database);
    builder.add(node);
    Transactions::Change change(m_transactions);
    createTable(builder.take(), place.database);
    change.finish();
    m_context.rowCount = 0;
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::DropTable &node)
{
    for (const Ast::ObjectName &name : node.names) {
        const Bound::TableScan scan = [&]() -> Bound::TableScan {
            if (name.isTemporaryTable())
                return findOrNull(name);
            const DatabasePtr database =
                findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
            if (!database)
                return {};
            m_transactions.changeDefinitions(*database);
            return findOrNull(name);
        }();
        if (!scan.table) {
            if (node.ifExists)
                continue;
            throw cannotDrop("table", name.toString());
        }
        const TablePtr table = scan.table;
        const DatabasePtr database = scan.database;
        if (database) {
            for (const TablePtr &other : database->referencing(table->id))
                if (other->id != table->id)
                    throw EngineError(3726, 16, 1,
                                      "Could not drop object '" + name.toString() +
                                          "' because it is referenced by a FOREIGN KEY constraint.");
            m_connection.attach(database);
        }
        Transactions::Change change(m_transactions);
        m_connection.execute("DROP TABLE " + scan.schema + '.' + table->physicalName());
        if (database) {
            for (const ModulePtr &trigger : database->triggersOf(table->id))
                replaceObject(database, trigger, nullptr);
            database->erase(*table);
            m_transactions.onRollback([database, table] { database->insert(table); });
        } else {
            eraseTemporary(*table);
            m_transactions.onRollback([this, table] { m_frame->tables.insert(table); });
        }
        change.finish();
    }
    m_context.rowCount = 0;
    return Flow::Next;
}

void Interpreter::replaceObject(const DatabasePtr &database, const ObjectPtr &before, ObjectPtr after)
{
    if (before)
        database->erase(*before);
    if (after)
        database->insert(after);
    m_transactions.onRollback([database, before, after] {
        if (after)
            database->erase(*after);
        if (before)
            database->insert(before);
    });
}

void Interpreter::replaceTable(const Bound::TableScan &scan, Table changed)
{
    changed.modified = m_context.statementTime;
    const TablePtr before = scan.table, after = std::make_shared<const Table>(std::move(changed));
    if (scan.database)
        return replaceObject(scan.database, before, after);
    eraseTemporary(*before);
    m_frame->tables.insert(after);
    m_transactions.onRollback([this, before, after] {
        eraseTemporary(*after);
        m_frame->tables.insert(before);
    });
}

Interpreter::Flow Interpreter::run(const Ast::CreateSchema &node)
{
    m_transactions.changeDefinitions(*m_database);
    if (m_database->findSchema(node.name))
        throw nameTaken(node.name).followedBy(2759, 0, "CREATE SCHEMA failed due to previous errors.");
    Transactions::Change change(m_transactions);
    const Schema schema = m_database->createSchema(node.name);
    m_transactions.onRollback([database = m_database, schema] { database->eraseSchema(schema); });
    change.finish();
    return Flow::Next;
}

void Interpreter::dropSchema(const std::string &name, bool ifExists)
{
    m_transactions.changeDefinitions(*m_database);
    const auto schema = m_database->findSchema(name);
    if (!schema || schema->id < 5) {
        if (!schema && ifExists)
            return;
        throw EngineError(15151, 16, 1,
                          "Cannot drop the schema '" + name +
                              "', because it does not exist or you do not have permission.");
    }
    for (const ObjectPtr &object : m_database->objects())
        if (foldedName(object->schema) == foldedName(name))
            throw EngineError(3729, 16, 1,
                              "Cannot drop schema '" + name + "' because it is being referenced by object '" +
                                  object->name + "'.");
    Transactions::Change change(m_transactions);
    m_database->eraseSchema(*schema);
    m_transactions.onRollback(
        [database = m_database, schema] { database->createSchema(schema->name, schema->id); });
    change.finish();
}

Interpreter::Flow Interpreter::run(const Ast::CreateType &node)
{
    const Place place = placeOfPermanent({{node.name.qualifier(1), node.name.object()}}, true);
    if (place.database->findType(place.schema, node.name.object()))
        throw EngineError(219, 16, 1,
                          "The type '" + node.name.toString() +
                              "' already exists, or you do not have permission to create it.",
                          ErrorEffect::EndsBatch);
    UserType type;
    type.schema = place.schema;
    type.name = node.name.object();
    if (node.table) {
        Table table;
        table.kind = ObjectKind::TableType;
        table.schema = place.schema;
        table.name = type.name;
        table.id = newObjectId();
        table.database = place.database->id();
        table.created = table.modified = m_context.statementTime;
        TableBuilder builder(*this, std::move(table), nullptr);
        builder.add(*node.table);
        type.table = std::make_shared<const Table>(builder.take());
        type.nullable = false;
    } else {
        type.base = findType(node.base, 1).type;
        type.nullable = node.nullable.value_or(true);
    }
    type.id = place.database->newTypeId();
    Transactions::Change change(m_transactions);
    const auto made = std::make_shared<const UserType>(std::move(type));
    place.database->insertType(made);
    m_transactions.onRollback([database = place.database, made] { database->eraseType(*made); });
    change.finish();
    return Flow::Next;
}

void Interpreter::dropType(const Ast::ObjectName &name, bool ifExists)
{
    m_transactions.changeDefinitions(*m_database);
    const std::string schema = name.qualifier(1).empty() ? "dbo" : name.qualifier(1);
    const UserTypePtr type = m_database->findType(schema, name.object());
    if (!type) {
        if (ifExists)
            return;
        throw EngineError(218, 16, 1,
                          "Could not find the type '" + name.toString() +
                              "'. Either it does not exist or you do not have the necessary permission.");
    }
    for (const ObjectPtr &object : m_database->objects())
        if (const auto *table = dynamic_cast<const Table *>(object.get()))
            for (const TableColumn &column : table->columns)
                if (column.userType && column.userType->id == type->id)
                    throw EngineError(3732, 16, 1,
                                      "Cannot drop type '" + name.toString() +
                                          "' because it is being referenced by object '" + table->name +
                                          "'. There may be other objects that reference this type.");
    Transactions::Change change(m_transactions);
    m_database->eraseType(*type);
    m_transactions.onRollback([database = m_database, type] { database->insertType(type); });
    change.finish();
}

Interpreter::Flow Interpreter::run(const Ast::CreateSynonym &node)
{
    const Place place = placeOfNew(node.name);
    if (!place.database)
        throw Errors::notSupported("temporary synonyms");
    auto synonym = std::make_shared<Synonym>();
    synonym->id = newObjectId();
    synonym->database = place.database->id();
    synonym->schema = place.schema;
    synonym->name = node.name.object();
    synonym->created = synonym->modified = m_context.statementTime;
    synonym->target = node.target;
    for (const std::string &part : node.target.parts)
        synonym->targetText += (synonym->targetText.empty() ? "[" : ".[") + part + ']';
    Transactions::Change change(m_transactions);
    replaceObject(place.database, nullptr, synonym);
    change.finish();
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

Interpreter::Flow Interpreter::run(const Ast::AlterDatabase &node)
{
    const DatabasePtr database = findDatabase(node.name);
    if (!database)
        throw EngineError(5011, 14, 5,
                          "User does not have permission to alter database '" + node.name +
                              "', the database does not exist, or the database is not in a state that allows "
                              "access checks.")
            .followedBy(5069, 1, "ALTER DATABASE statement failed.");
    if (node.newName.empty())
        return Flow::Next;
    if (!m_state.databases.rename(*database, node.newName))
        throw EngineError(1801, 16, 3,
                          "Database '" + node.newName + "' already exists. Choose a different database name.",
                          ErrorEffect::EndsBatch);
    if (database == m_database)
        m_context.database = node.newName;
    m_sink->message({5001, 0, 0, "The database name '" + node.newName + "' has been set.", {}, m_line});
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
            throw cannotDrop("database", name, 1);
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
