#include "Engine/Bind/TypeRules.h"
#include "Engine/Catalog/CatalogTable.h"
#include "Engine/Catalog/SystemCatalog.h"
#include "Engine/Errors.h"
#include "Engine/Parse/NameText.h"
#include "Engine/Run/Interpreter.h"
#include "Types/Collation.h"
#include "Types/Text.h"

#include <utility>

namespace SampleServer {

DatabasePtr Interpreter::findDatabase(const std::string &name) const
{
    return name.empty() ? m_database : m_state.databases.find(name);
}

std::string Interpreter::fullName(const Table &table) const
{
    const DatabasePtr database =
        table.database == 0 ? m_state.databases.find("tempdb") : m_state.databases.find(table.database);
    return (database ? database->name() + '.' : std::string()) + table.schema + '.' + table.name;
}

Interpreter::FoundObject Interpreter::findObject(const Ast::ObjectName &name, bool followSynonyms)
{
    // The tables of a trigger, and what parameters hand over, come before everything else.
    const bool isVariable = name.object().starts_with('@');
    const TablePtr own = name.parts.size() == 1 ? m_frame->tables.find(name.object()) : nullptr;
    if (own && isVariable == name.isVariable)
        return {own, nullptr};
    if (name.isTemporaryTable())
        return {findTemporary(name.object()), nullptr};
    // Global temporary tables live in tempdb, wherever they are named.
    const DatabasePtr database = findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
    if (!database || !name.qualifier(3).empty())
        return {};
    const auto find = [&]() -> ObjectPtr {
        if (!name.qualifier(1).empty())
            return database->find(name.qualifier(1), name.object());
        if (auto object = database->find(m_nameSchema, name.object()))
            return object;
        return database->find("dbo", name.object());
    };
    ObjectPtr object = find();
    if (!object) {
        // It may be about to come back: whoever dropped it may still roll back.
        m_transactions.useDefinitions(*database);
        object = find();
    }
    if (object && object->kind == ObjectKind::Synonym && followSynonyms) {
        const auto &target = dynamic_cast<const Synonym &>(*object).target;
        const FoundObject found = findObject(target, false);
        return found.object && found.object->kind == ObjectKind::Synonym ? FoundObject() : found;
    }
    return {object, database};
}

Bound::TableScan Interpreter::findOrNull(const Ast::ObjectName &name)
{
    const FoundObject found = findObject(name);
    const auto table = stored(std::dynamic_pointer_cast<const Table>(found.object), found.database);
    return table ? scanOf(table, found.database) : Bound::TableScan();
}

/// A temporary table of this text or of one that runs it, or a table variable of this text.
TablePtr Interpreter::findTemporary(const std::string &name) const
{
    for (const Frame *frame = m_frame; frame; frame = frame->outer) {
        if (TablePtr table = frame->tables.find(name))
            return table;
        if (TablePtr table = frame->tableParameters.find(name))
            return table;
        if (name.starts_with('@'))
            break;
    }
    return nullptr;
}

void Interpreter::eraseTemporary(const Table &table)
{
    for (Frame *frame = m_frame; frame; frame = frame->outer)
        if (frame->tables.findById(table.id))
            return frame->tables.erase(table);
}

/// Throws where the name leads out of what the session can reach.
void Interpreter::requireReachable(const Ast::ObjectName &name) const
{
    const std::string database = foldedName(name.qualifier(2));
    if (m_context.edition == Edition::Azure &&
        (!name.qualifier(3).empty() ||
         (!database.empty() && database != foldedName(m_context.database) && database != "TEMPDB")))
        throw EngineError(40515, 15, 1,
                          "Reference to database and/or server name in '" + name.toString() +
                              "' is not supported in this version of SQL Server.",
                          ErrorEffect::EndsBatch);
    if (!name.qualifier(3).empty())
        throw Errors::notSupported("names with a server part");
}

Bound::TableScan Interpreter::findTable(const Ast::ObjectName &name)
{
    requireReachable(name);
    const Bound::TableScan scan = findOrNull(name);
    if (NamedSource system; !scan.table && findSystemSource(name, system))
        throw EngineError(259, 16, 1, "Ad hoc updates to system catalogs are not allowed.",
                          ErrorEffect::EndsBatch);
    if (!scan.table)
        throw Errors::invalidObject(name.toString());
    m_uses.push_back({scan.database, scan.table, TableUse::Access::Definition});
    return scan;
}

NamedSource Interpreter::findSource(const Ast::ObjectName &name)
{
    requireReachable(name);
    NamedSource source;
    if (findSystemSource(name, source))
        return source;
    const FoundObject found = findObject(name);
    if (auto table = stored(std::dynamic_pointer_cast<const Table>(found.object), found.database)) {
        source.scan = scanOf(table, found.database);
        m_uses.push_back({found.database, table, TableUse::Access::Definition});
        return source;
    }
    if (found.object && found.object->kind == ObjectKind::View) {
        source.module = std::dynamic_pointer_cast<const Module>(found.object);
        source.database = found.database;
        return source;
    }
    throw Errors::invalidObject(name.toString());
}

/// The catalog: sys and INFORMATION_SCHEMA, and the old tables without a schema unless the name is taken.
bool Interpreter::findSystemSource(const Ast::ObjectName &name, NamedSource &source)
{
    const std::string schema = foldedName(name.qualifier(1)), object = foldedName(name.object());
    const bool explicitly = schema == "SYS" || schema == "INFORMATION_SCHEMA";
    const bool old =
        (schema.empty() || schema == "DBO") && (object.starts_with("SYS") || object == "SPT_VALUES");
    if (!explicitly && !old)
        return false;
    const bool within =
        m_nameSchema == "sys" || m_nameSchema == "INFORMATION_SCHEMA"; // a view of the catalog
    const DatabasePtr database = findDatabase(name.qualifier(2));
    if (!database || (old && findObject(name).object))
        return false;
    if (const CatalogTable *table = within ? findCatalogTable(toLower(name.object())) : nullptr) {
        m_transactions.useDefinitions(*database);
        m_connection.attach(database);
        source.provider = table->rows({database, m_state, m_connection});
        source.columns = &table->columns();
        return true;
    }
    source.module = findSystemView(m_context.edition, old ? "sys" : name.qualifier(1), name.object());
    if (source.module && !within && !showsSystemView(m_context.edition, *source.module, explicitly))
        source.module = nullptr;
    if (source.module && source.module->kind != ObjectKind::View)
        source.module = nullptr;
    source.database = database;
    return source.module != nullptr;
}

ModulePtr Interpreter::findFunction(const Ast::ObjectName &name, DatabasePtr &database)
{
    requireReachable(name);
    const std::string schema = foldedName(name.qualifier(1));
    if (schema == "SYS" || (schema.empty() && foldedName(name.object()).starts_with("FN_")))
        if (const ModulePtr module = findSystemView(m_context.edition, "sys", name.object())) {
            database = findDatabase(name.qualifier(2));
            return module->kind == ObjectKind::InlineFunction ? module : nullptr;
        }
    const FoundObject found = findObject(name);
    const bool isFunction = found.object && (found.object->kind == ObjectKind::ScalarFunction ||
                                             found.object->kind == ObjectKind::InlineFunction ||
                                             found.object->kind == ObjectKind::TableFunction);
    database = found.database;
    return isFunction ? std::dynamic_pointer_cast<const Module>(found.object) : nullptr;
}

NamedType Interpreter::findType(const Ast::TypeName &name, int position)
{
    const std::string schema = name.name.qualifier(1);
    UserTypePtr type;
    if (name.name.parts.size() <= 2) {
        if (schema.empty())
            type = m_database->findType(m_nameSchema, name.name.object());
        if (!type)
            type = m_database->findType(schema.empty() ? "dbo" : schema, name.name.object());
    }
    if (type)
        return {type->base, type};
    try {
        return {resolveType(name, TypePlace::Declaration, m_context.edition), nullptr};
    } catch (EngineError &error) {
        if (error.message.number == 2715)
            throw Errors::unknownType(name.name.toString(), position);
        throw;
    }
}

/// While it lives, names mean what they mean in the database and schema of a module.
class CurrentModule : public ModuleNames
{
public:
    CurrentModule(Interpreter &interpreter, const std::string &schema, DatabasePtr database)
        : m_interpreter(interpreter)
        , m_schema(std::exchange(interpreter.m_nameSchema, schema))
        , m_database(interpreter.m_database)
        , m_databaseName(interpreter.m_context.database)
    {
        if (!database)
            return;
        m_interpreter.m_context.database = database->name();
        m_interpreter.m_database = std::move(database);
    }
    ~CurrentModule() override
    {
        m_interpreter.m_nameSchema = m_schema;
        m_interpreter.m_database = m_database;
        m_interpreter.m_context.database = m_databaseName;
    }
    CurrentModule(const CurrentModule &) = delete;
    CurrentModule &operator=(const CurrentModule &) = delete;

private:
    Interpreter &m_interpreter;
    const std::string m_schema;
    const DatabasePtr m_database;
    const std::string m_databaseName;
};

std::unique_ptr<ModuleNames> Interpreter::enterModule(const Module &module, const DatabasePtr &database)
{
    return std::make_unique<CurrentModule>(*this, module.schema, database);
}

void Interpreter::willRead(const Bound::TableScan &scan, bool readUncommitted)
{
    const auto access = readUncommitted ? TableUse::Access::ReadUncommitted : TableUse::Access::Read;
    m_uses.push_back({scan.database, scan.table, access});
}

void Interpreter::willWrite(const Bound::TableScan &scan)
{
    if (scan.database)
        requireOutsideFunction("INSERT");
    m_uses.push_back({scan.database, scan.table, TableUse::Access::Write});
}

void Interpreter::lockUses()
{
    const std::vector<TableUse> uses = std::exchange(m_uses, {});
    m_transactions.lock(uses);
    for (const TableUse &use : uses) {
        if (!use.database)
            continue;
        if (use.database->findTable(use.table->id) != use.table)
            throw DefinitionsChanged();
        m_connection.attach(use.database);
    }
}

void Interpreter::provideNames()
{
    m_context.objectId = [this](const std::string &text) -> std::optional<std::int64_t> {
        const Ast::ObjectName name = nameFromText(text);
        if (name.parts.empty() || name.object().empty())
            return {};
        if (const DatabasePtr database = findDatabase(name.qualifier(2)))
            m_transactions.useDefinitions(*database);
        const FoundObject found = findObject(name, false);
        if (found.object)
            return found.object->id;
        const DatabasePtr database = findDatabase(name.qualifier(2));
        const std::string schema = name.qualifier(1).empty() ? "dbo" : name.qualifier(1);
        if (const TablePtr table = database ? database->findConstraint(schema, name.object()) : nullptr)
            for (const ConstraintName *constraint : table->constraints())
                if (foldedName(constraint->name) == foldedName(name.object()))
                    return constraint->id;
        const ModulePtr view = findSystemView(
            m_context.edition, name.qualifier(1).empty() ? "sys" : name.qualifier(1), name.object());
        const bool shown = view && showsSystemView(m_context.edition, *view, !name.qualifier(1).empty());
        return database && shown ? std::optional(view->id) : std::nullopt;
    };
    m_context.findDatabase = [this](const std::string &name) { return findDatabase(name); };
    m_context.databaseId = [this](const std::string &name) -> std::optional<std::int64_t> {
        const DatabasePtr database = findDatabase(name);
        return database ? std::optional<std::int64_t>(database->id()) : std::nullopt;
    };
    m_context.databaseName = [this](std::int64_t id) -> std::optional<std::string> {
        const DatabasePtr database = m_state.databases.find(static_cast<int>(id));
        return database ? std::optional(database->name()) : std::nullopt;
    };
    m_context.callFunction = [this](const Module &module, std::span<const Value> arguments) {
        return callFunction(module, arguments);
    };
    m_context.variable = [this](const std::string &name) {
        const VariableSlot *slot = m_frame->variables.find(name);
        return slot ? slot->value : Value();
    };
}

} // namespace SampleServer
