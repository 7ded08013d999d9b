#include "Engine/Run/NameLookup.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Catalog/CatalogTable.h"
#include "Engine/Catalog/SystemCatalog.h"
#include "Engine/Errors.h"
#include "Engine/Parse/NameText.h"
#include "Engine/Run/FunctionRows.h"
#include "Types/Collation.h"
#include "Types/Text.h"

#include <utility>

namespace SampleServer {

namespace {

/// Resolves names in the database and schema of a module as long as this object exists.
class CurrentModule : public ModuleNames
{
public:
    CurrentModule(SessionContext &session, const std::string &schema, DatabasePtr database)
        : m_session(session)
        , m_schema(std::exchange(session.nameSchema, schema))
        , m_database(session.database)
        , m_databaseName(session.evaluation.database)
    {
        if (!database)
            return;
        m_session.evaluation.database = database->name();
        m_session.database = std::move(database);
    }
    ~CurrentModule() override
    {
        m_session.nameSchema = m_schema;
        m_session.database = m_database;
        m_session.evaluation.database = m_databaseName;
    }
    CurrentModule(const CurrentModule &) = delete;
    CurrentModule &operator=(const CurrentModule &) = delete;

private:
    SessionContext &m_session;
    const std::string m_schema;
    const DatabasePtr m_database;
    const std::string m_databaseName;
};

} // namespace

NameLookup::NameLookup(SessionContext &session, TableStore &store)
    : m_session(session)
    , m_store(store)
{
    EvaluationContext &evaluation = session.evaluation;
    evaluation.objectId = [this](const std::string &text) { return findId(text); };
    evaluation.findDatabase = [this](const std::string &name) { return findDatabase(name); };
    evaluation.databaseId = [this](const std::string &name) -> std::optional<std::int64_t> {
        const DatabasePtr database = findDatabase(name);
        return database ? std::optional<std::int64_t>(database->id()) : std::nullopt;
    };
    evaluation.databaseName = [this](std::int64_t id) -> std::optional<std::string> {
        const DatabasePtr database = m_session.state.databases.find(static_cast<int>(id));
        return database ? std::optional(database->name()) : std::nullopt;
    };
    evaluation.variable = [this](const std::string &name) {
        const VariableSlot *slot = m_session.frame->variables.find(name);
        return slot ? slot->value : Value();
    };
}

/// The value of OBJECT_ID.
std::optional<std::int64_t> NameLookup::findId(const std::string &text)
{
    const Ast::ObjectName name = nameFromText(text);
    if (name.parts.empty() || name.object().empty())
        return {};
    if (const DatabasePtr database = findDatabase(name.qualifier(2)))
        m_session.transactions.useDefinitions(*database);
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
        m_session.evaluation.edition, name.qualifier(1).empty() ? "sys" : name.qualifier(1), name.object());
    const bool shown =
        view && showsSystemView(m_session.evaluation.edition, *view, !name.qualifier(1).empty());
    return database && shown ? std::optional(view->id) : std::nullopt;
}

DatabasePtr NameLookup::findDatabase(const std::string &name) const
{
    return name.empty() ? m_session.database : m_session.state.databases.find(name);
}

std::string NameLookup::fullName(const Table &table) const
{
    const DatabasePtr database = table.database == 0 ? m_session.state.databases.find("tempdb")
                                                     : m_session.state.databases.find(table.database);
    return (database ? database->name() + '.' : std::string()) + table.schema + '.' + table.name;
}

FoundObject NameLookup::findObject(const Ast::ObjectName &name, bool followSynonyms)
{
    // A trigger's tables and table parameters have priority over all others.
    const bool isVariable = name.object().starts_with('@');
    const TablePtr own = name.parts.size() == 1 ? m_session.frame->tables.find(name.object()) : nullptr;
    if (own && isVariable == name.isVariable)
        return {own, nullptr};
    if (name.isTemporaryTable())
        return {m_store.findTemporary(name.object()), nullptr};
    // Global temporary tables are stored in tempdb, regardless of the given database.
    const DatabasePtr database = findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
    if (!database || !name.qualifier(3).empty())
        return {};
    const auto find = [&]() -> ObjectPtr {
        if (!name.qualifier(1).empty())
            return database->find(name.qualifier(1), name.object());
        if (auto object = database->find(m_session.nameSchema, name.object()))
            return object;
        return database->find("dbo", name.object());
    };
    ObjectPtr object = find();
    if (!object) {
        // A session that has dropped it may still roll back.
        m_session.transactions.useDefinitions(*database);
        object = find();
    }
    if (object && object->kind == ObjectKind::Synonym && followSynonyms) {
        const auto &target = dynamic_cast<const Synonym &>(*object).target;
        const FoundObject found = findObject(target, false);
        return found.object && found.object->kind == ObjectKind::Synonym ? FoundObject() : found;
    }
    return {object, database};
}

Bound::TableScan NameLookup::findOrNull(const Ast::ObjectName &name)
{
    const FoundObject found = findObject(name);
    const auto table = m_store.stored(std::dynamic_pointer_cast<const Table>(found.object), found.database);
    return table ? m_store.scanOf(table, found.database) : Bound::TableScan();
}

void NameLookup::requireReachable(const Ast::ObjectName &name) const
{
    const std::string database = foldedName(name.qualifier(2));
    if (m_session.evaluation.edition == Edition::Azure &&
        (!name.qualifier(3).empty() ||
         (!database.empty() && database != foldedName(m_session.evaluation.database) &&
          database != "TEMPDB")))
        throw EngineError(40515, 15, 1,
                          "Reference to database and/or server name in '" + name.toString() +
                              "' is not supported in this version of SQL Server.",
                          ErrorEffect::EndsBatch);
    if (!name.qualifier(3).empty())
        throw Errors::notSupported("names with a server part");
}

Bound::TableScan NameLookup::findTable(const Ast::ObjectName &name)
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

NamedSource NameLookup::findSource(const Ast::ObjectName &name)
{
    requireReachable(name);
    NamedSource source;
    if (findSystemSource(name, source))
        return source;
    const FoundObject found = findObject(name);
    if (auto table = m_store.stored(std::dynamic_pointer_cast<const Table>(found.object), found.database)) {
        source.scan = m_store.scanOf(table, found.database);
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

/// Finds catalog objects: sys and INFORMATION_SCHEMA, and the old tables without a schema unless the name is
/// taken.
bool NameLookup::findSystemSource(const Ast::ObjectName &name, NamedSource &source)
{
    const std::string schema = foldedName(name.qualifier(1)), object = foldedName(name.object());
    const bool explicitly = schema == "SYS" || schema == "INFORMATION_SCHEMA";
    const bool old =
        (schema.empty() || schema == "DBO") && (object.starts_with("SYS") || object == "SPT_VALUES");
    if (!explicitly && !old)
        return false;
    const bool within = m_session.nameSchema == "sys" ||
                        m_session.nameSchema == "INFORMATION_SCHEMA"; // a view of the catalog
    const DatabasePtr database = findDatabase(name.qualifier(2));
    if (!database || (old && findObject(name).object))
        return false;
    if (const CatalogTable *table = within ? findCatalogTable(toLower(name.object())) : nullptr) {
        m_session.transactions.useDefinitions(*database);
        m_session.connection.attach(database);
        source.provider = table->rows({database, m_session.state, m_session.connection});
        source.columns = &table->columns();
        return true;
    }
    source.module =
        findSystemView(m_session.evaluation.edition, old ? "sys" : name.qualifier(1), name.object());
    if (source.module && !within &&
        !showsSystemView(m_session.evaluation.edition, *source.module, explicitly))
        source.module = nullptr;
    if (source.module && source.module->kind != ObjectKind::View)
        source.module = nullptr;
    source.database = database;
    return source.module != nullptr;
}

ModulePtr NameLookup::findFunction(const Ast::ObjectName &name, DatabasePtr &database)
{
    requireReachable(name);
    const std::string schema = foldedName(name.qualifier(1));
    if (schema == "SYS" || (schema.empty() && foldedName(name.object()).starts_with("FN_")))
        if (const ModulePtr module = findSystemView(m_session.evaluation.edition, "sys", name.object())) {
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

NamedType NameLookup::findType(const Ast::TypeName &name, int position)
{
    const std::string schema = name.name.qualifier(1);
    UserTypePtr type;
    if (name.name.parts.size() <= 2) {
        if (schema.empty())
            type = m_session.database->findType(m_session.nameSchema, name.name.object());
        if (!type)
            type = m_session.database->findType(schema.empty() ? "dbo" : schema, name.name.object());
    }
    if (type)
        return {type->base, type};
    try {
        return {resolveType(name, TypePlace::Declaration, m_session.evaluation.edition), nullptr};
    } catch (EngineError &error) {
        if (error.message.number == 2715)
            throw Errors::unknownType(name.name.toString(), position);
        throw;
    }
}

std::unique_ptr<ModuleNames> NameLookup::enterModule(const Module &module, const DatabasePtr &database)
{
    return std::make_unique<CurrentModule>(m_session, module.schema, database);
}

std::shared_ptr<const RowProvider> NameLookup::functionRows(const ModulePtr &module, const DatabasePtr &)
{
    return rowsOfFunction(m_session.evaluation, module);
}

void NameLookup::willRead(const Bound::TableScan &scan, bool readUncommitted)
{
    const auto access = readUncommitted ? TableUse::Access::ReadUncommitted : TableUse::Access::Read;
    m_uses.push_back({scan.database, scan.table, access});
}

void NameLookup::willWrite(const Bound::TableScan &scan)
{
    if (scan.database)
        m_session.requireOutsideFunction("INSERT");
    m_uses.push_back({scan.database, scan.table, TableUse::Access::Write});
}

void NameLookup::lockUses()
{
    const std::vector<TableUse> uses = std::exchange(m_uses, {});
    m_session.transactions.lock(uses);
    for (const TableUse &use : uses) {
        if (!use.database)
            continue;
        if (use.database->findTable(use.table->id) != use.table)
            throw DefinitionsChanged();
        m_session.connection.attach(use.database);
    }
}

NewPlace NameLookup::placeOfNew(const Ast::ObjectName &name, bool mayExist)
{
    if (name.isTemporaryTable()) {
        if (m_session.frame->tables.find(name.object()))
            throw Errors::nameTaken(name.object());
        return {nullptr, "dbo"};
    }
    return placeOfPermanent(name, mayExist);
}

NewPlace NameLookup::placeOfPermanent(const Ast::ObjectName &name, bool mayExist)
{
    m_session.requireOutsideFunction("CREATE");
    NewPlace place;
    place.database = findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
    if (!place.database)
        throw Errors::noSuchDatabase(name.qualifier(2));
    m_session.transactions.changeDefinitions(*place.database);
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
        throw Errors::nameTaken(name.object());
    return place;
}

} // namespace SampleServer
