#include "Engine/Run/DefinitionExecutor.h"
#include "Engine/Errors.h"
#include "Engine/Run/TableBuilder.h"
#include "Types/Collation.h"

namespace SampleServer {

namespace {

EngineError cannotDrop(const std::string &kind, const std::string &name, int state = 5)
{
    return {3701, 11, state,
            "Cannot drop the " + kind + " '" + name +
                "', because it does not exist or you do not have permission."};
}

} // namespace

void DefinitionExecutor::run(const Ast::CreateTable &node)
{
    const NewPlace place = m_names.placeOfNew(node.name);
    Table table;
    table.name = node.name.object();
    table.schema = place.schema;
    table.id = newObjectId();
    TableBuilder builder(m_queries, std::move(table), place.database);
    builder.add(node);
    Transactions::Change change(m_session.transactions);
    m_store.createTable(builder.take(), place.database);
    change.finish();
    m_session.evaluation.rowCount = 0;
}

/// Finds the table after getting the lock on definitions.
Bound::TableScan DefinitionExecutor::tableToDrop(const Ast::ObjectName &name)
{
    if (name.isTemporaryTable())
        return m_names.findOrNull(name);
    const DatabasePtr database =
        m_names.findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
    if (!database)
        return {};
    m_session.transactions.changeDefinitions(*database);
    return m_names.findOrNull(name);
}

void DefinitionExecutor::run(const Ast::DropTable &node)
{
    for (const Ast::ObjectName &name : node.names) {
        const Bound::TableScan scan = tableToDrop(name);
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
            m_session.connection.attach(database);
        }
        Transactions::Change change(m_session.transactions);
        m_session.connection.execute("DROP TABLE " + scan.schema + '.' + table->physicalName());
        if (database) {
            for (const ModulePtr &trigger : database->triggersOf(table->id))
                m_store.replaceObject(database, trigger, nullptr);
            database->erase(*table);
            m_session.transactions.onRollback([database, table] { database->insert(table); });
        } else {
            m_store.eraseTemporary(*table);
            m_session.transactions.onRollback([this, table] { m_session.frame->tables.insert(table); });
        }
        change.finish();
    }
    m_session.evaluation.rowCount = 0;
}

void DefinitionExecutor::run(const Ast::CreateSchema &node)
{
    m_session.transactions.changeDefinitions(*m_session.database);
    if (m_session.database->findSchema(node.name))
        throw Errors::nameTaken(node.name).followedBy(2759, 0,
                                                      "CREATE SCHEMA failed due to previous errors.");
    Transactions::Change change(m_session.transactions);
    const Schema schema = m_session.database->createSchema(node.name);
    m_session.transactions.onRollback(
        [database = m_session.database, schema] { database->eraseSchema(schema); });
    change.finish();
}

void DefinitionExecutor::dropSchema(const std::string &name, bool ifExists)
{
    m_session.transactions.changeDefinitions(*m_session.database);
    const auto schema = m_session.database->findSchema(name);
    if (!schema || schema->id < 5) {
        if (!schema && ifExists)
            return;
        throw EngineError(15151, 16, 1,
                          "Cannot drop the schema '" + name +
                              "', because it does not exist or you do not have permission.");
    }
    for (const ObjectPtr &object : m_session.database->objects())
        if (foldedName(object->schema) == foldedName(name))
            throw EngineError(3729, 16, 1,
                              "Cannot drop schema '" + name + "' because it is being referenced by object '" +
                                  object->name + "'.");
    Transactions::Change change(m_session.transactions);
    m_session.database->eraseSchema(*schema);
    m_session.transactions.onRollback(
        [database = m_session.database, schema] { database->createSchema(schema->name, schema->id); });
    change.finish();
}

void DefinitionExecutor::run(const Ast::CreateType &node)
{
    const NewPlace place = m_names.placeOfPermanent({{node.name.qualifier(1), node.name.object()}}, true);
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
        table.created = table.modified = m_session.evaluation.statementTime;
        TableBuilder builder(m_queries, std::move(table), nullptr);
        builder.add(*node.table);
        type.table = std::make_shared<const Table>(builder.take());
        type.nullable = false;
    } else {
        type.base = m_names.findType(node.base, 1).type;
        type.nullable = node.nullable.value_or(true);
    }
    type.id = place.database->newTypeId();
    Transactions::Change change(m_session.transactions);
    const auto made = std::make_shared<const UserType>(std::move(type));
    place.database->insertType(made);
    m_session.transactions.onRollback([database = place.database, made] { database->eraseType(*made); });
    change.finish();
}

void DefinitionExecutor::dropType(const Ast::ObjectName &name, bool ifExists)
{
    m_session.transactions.changeDefinitions(*m_session.database);
    const std::string schema = name.qualifier(1).empty() ? "dbo" : name.qualifier(1);
    const UserTypePtr type = m_session.database->findType(schema, name.object());
    if (!type) {
        if (ifExists)
            return;
        throw EngineError(218, 16, 1,
                          "Could not find the type '" + name.toString() +
                              "'. Either it does not exist or you do not have the necessary permission.");
    }
    for (const ObjectPtr &object : m_session.database->objects())
        if (const auto *table = dynamic_cast<const Table *>(object.get()))
            for (const TableColumn &column : table->columns)
                if (column.userType && column.userType->id == type->id)
                    throw EngineError(3732, 16, 1,
                                      "Cannot drop type '" + name.toString() +
                                          "' because it is being referenced by object '" + table->name +
                                          "'. There may be other objects that reference this type.");
    Transactions::Change change(m_session.transactions);
    m_session.database->eraseType(*type);
    m_session.transactions.onRollback([database = m_session.database, type] { database->insertType(type); });
    change.finish();
}

void DefinitionExecutor::run(const Ast::CreateSynonym &node)
{
    const NewPlace place = m_names.placeOfNew(node.name);
    if (!place.database)
        throw Errors::notSupported("temporary synonyms");
    auto synonym = std::make_shared<Synonym>();
    synonym->id = newObjectId();
    synonym->database = place.database->id();
    synonym->schema = place.schema;
    synonym->name = node.name.object();
    synonym->created = synonym->modified = m_session.evaluation.statementTime;
    synonym->target = node.target;
    for (const std::string &part : node.target.parts)
        synonym->targetText += (synonym->targetText.empty() ? "[" : ".[") + part + ']';
    Transactions::Change change(m_session.transactions);
    m_store.replaceObject(place.database, nullptr, synonym);
    change.finish();
}

void DefinitionExecutor::run(const Ast::DropObjects &node)
{
    for (const Ast::ObjectName &name : node.names) {
        if (node.kind == "SCHEMA")
            dropSchema(name.object(), node.ifExists);
        else if (node.kind == "TYPE")
            dropType(name, node.ifExists);
        else
            m_definer.dropObject(name, node.kind, node.ifExists);
    }
    m_session.evaluation.rowCount = 0;
}

void DefinitionExecutor::run(const Ast::CreateDatabase &node)
{
    if (m_session.transactions.isOpen())
        throw EngineError(226, 16, 6,
                          "CREATE DATABASE statement not allowed within multi-statement transaction.");
    if (!m_session.state.databases.create(node.name))
        throw EngineError(1801, 16, 3,
                          "Database '" + node.name + "' already exists. Choose a different database name.",
                          ErrorEffect::EndsBatch);
}

void DefinitionExecutor::run(const Ast::AlterDatabase &node)
{
    const DatabasePtr database = m_names.findDatabase(node.name);
    if (!database)
        throw EngineError(5011, 14, 5,
                          "User does not have permission to alter database '" + node.name +
                              "', the database does not exist, or the database is not in a state that allows "
                              "access checks.")
            .followedBy(5069, 1, "ALTER DATABASE statement failed.");
    if (node.newName.empty())
        return;
    if (!m_session.state.databases.rename(*database, node.newName))
        throw EngineError(1801, 16, 3,
                          "Database '" + node.newName + "' already exists. Choose a different database name.",
                          ErrorEffect::EndsBatch);
    if (database == m_session.database)
        m_session.evaluation.database = node.newName;
    m_session.sink->message(
        {5001, 0, 0, "The database name '" + node.newName + "' has been set.", {}, m_session.line});
}

void DefinitionExecutor::run(const Ast::DropDatabase &node)
{
    if (m_session.transactions.isOpen())
        throw EngineError(226, 16, 6,
                          "DROP DATABASE statement not allowed within multi-statement transaction.");
    for (const std::string &name : node.names) {
        const DatabasePtr database = m_session.state.databases.find(name);
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
        m_session.transactions.changeDefinitions(
            *database); // until the last statement that uses its tables has ended
        m_session.state.databases.erase(*database);
    }
}

} // namespace SampleServer
