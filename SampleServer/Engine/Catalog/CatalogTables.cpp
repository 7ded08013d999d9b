#include "Engine/Catalog/CatalogObjects.h"
#include "Engine/Catalog/CatalogTable.h"
#include "Engine/Catalog/CatalogTypes.h"
#include "Engine/Catalog/CatalogValues.h"
#include "Engine/Catalog/SystemCatalog.h"
#include "Types/Collation.h"
#include "Types/Text.h"

#include <map>

// Tables of definitions on which the catalog views are based.
namespace SampleServer {

using namespace CatalogValues;

namespace {

// objects$

using ObjectTable = TypedCatalogTable<ObjectRow>;

const CatalogTable &objects()
{
    static const ObjectTable table(
        listObjects,
        {{"object_id", Int, [](const ObjectRow &r, const Context &) { return number(r.id); }},
         {"parent_object_id", Int, [](const ObjectRow &r, const Context &) { return number(r.parent); }},
         {"name", Name, [](const ObjectRow &r, const Context &) { return text(r.name); }},
         {"schema_id", Int, [](const ObjectRow &r, const Context &) { return number(r.schema); }},
         {"type", Code, [](const ObjectRow &r, const Context &) { return text(padded(r.code)); }},
         {"type_desc", Text60,
          [](const ObjectRow &r, const Context &) { return text(typeDescription(r.code)); }},
         {"create_date", DateTime, [](const ObjectRow &r, const Context &) { return Value(r.created); }},
         {"modify_date", DateTime, [](const ObjectRow &r, const Context &) { return Value(r.modified); }},
         {"is_ms_shipped", Bit, [](const ObjectRow &r, const Context &) { return flag(r.id < 0); }},
         {"definition", LongText,
          [](const ObjectRow &r, const Context &) { return textOrNull(r.definition()); }},
         {"is_encrypted", Bit, [](const ObjectRow &r, const Context &) { return flag(r.isEncrypted()); }},
         {"is_schema_bound", Bit,
          [](const ObjectRow &r, const Context &) {
              return flag(r.module && r.module->definition->schemaBound);
          }},
         {"is_disabled", Bit, [](const ObjectRow &r, const Context &) { return flag(r.isDisabled()); }},
         {"is_not_trusted", Bit, [](const ObjectRow &r, const Context &) { return flag(r.isNotTrusted()); }},
         {"is_system_named", Bit,
          [](const ObjectRow &r, const Context &) { return flag(r.isSystemNamed()); }},
         {"is_instead_of_trigger", Bit,
          [](const ObjectRow &r, const Context &) {
              return flag(r.module && r.module->definition->insteadOf);
          }},
         {"parent_column_id", Int,
          [](const ObjectRow &r, const Context &) { return number(r.parentColumn()); }},
         {"unique_index_id", Int,
          [](const ObjectRow &r, const Context &) { return r.index ? number(r.index->id) : Value(); }},
         {"base_object_name",
          {TypeId::NVarChar, 1035},
          [](const ObjectRow &r, const Context &) { return textOrNull(r.synonymTarget()); }},
         {"max_column_id_used", Int,
          [](const ObjectRow &r, const Context &) { return number(r.table ? r.table->lastColumnId : 0); }},
         {"uses_quoted_identifier", Bit, [](const ObjectRow &r, const Context &) {
              return flag(!r.module || r.module->quotedIdentifiers);
          }}});
    return table;
}

// columns$

struct ColumnRow
{
    ObjectPtr object;
    const TableColumn *column;
    const Table *table; ///< null for views and functions
};

std::vector<ColumnRow> listColumns(const Context &context)
{
    std::vector<ColumnRow> rows;
    std::vector<ObjectPtr> all = allObjects(context);
    const Edition edition = context.server.edition;
    for (const ModulePtr &view : systemViews(edition))
        if (showsSystemView(edition, *view, true))
            all.push_back(view);
    for (const ObjectPtr &object : all) {
        if (const auto *table = dynamic_cast<const Table *>(object.get()))
            for (const TableColumn &column : table->columns)
                rows.push_back({object, &column, table});
        else if (const auto *module = dynamic_cast<const Module *>(object.get()))
            for (const TableColumn &column : module->columns)
                rows.push_back({object, &column, nullptr});
    }
    return rows;
}

int userTypeOf(const SqlType &type, const UserTypePtr &userType)
{
    if (userType)
        return userType->id;
    return type.id == TypeId::HierarchyId ? 128 : systemTypeId(type);
}

const CatalogTable &columns()
{
    static const TypedCatalogTable<ColumnRow> table(
        listColumns,
        {{"object_id", Int, [](const ColumnRow &r, const Context &) { return number(r.object->id); }},
         {"name", Name, [](const ColumnRow &r, const Context &) { return text(r.column->name); }},
         {"column_id", Int, [](const ColumnRow &r, const Context &) { return number(r.column->id); }},
         {"system_type_id", TinyInt,
          [](const ColumnRow &r, const Context &) {
              return number(r.column->rowVersion ? RowVersionTypeId : systemTypeId(r.column->type));
          }},
         {"user_type_id", Int,
          [](const ColumnRow &r, const Context &) {
              return number(r.column->rowVersion ? RowVersionTypeId
                                                 : userTypeOf(r.column->type, r.column->userType));
          }},
         {"max_length", SmallInt,
          [](const ColumnRow &r, const Context &) { return number(catalogLength(r.column->type)); }},
         {"precision", TinyInt,
          [](const ColumnRow &r, const Context &) { return number(catalogPrecision(r.column->type)); }},
         {"scale", TinyInt,
          [](const ColumnRow &r, const Context &) { return number(catalogScale(r.column->type)); }},
         {"collation_name", Name,
          [](const ColumnRow &r, const Context &) { return collationOfType(r.column->type); }},
         {"is_nullable", Bit, [](const ColumnRow &r, const Context &) { return flag(r.column->nullable); }},
         {"is_rowguidcol", Bit, [](const ColumnRow &r, const Context &) { return flag(r.column->rowGuid); }},
         {"is_identity", Bit, [](const ColumnRow &r, const Context &) { return flag(r.column->identity); }},
         {"is_computed", Bit,
          [](const ColumnRow &r, const Context &) { return flag(static_cast<bool>(r.column->computed)); }},
         {"is_sparse", Bit, [](const ColumnRow &r, const Context &) { return flag(r.column->sparse); }},
         {"is_persisted", Bit, [](const ColumnRow &r, const Context &) { return flag(r.column->persisted); }},
         {"default_object_id", Int,
          [](const ColumnRow &r, const Context &) {
              return number(r.column->defaultValue ? r.column->defaultName.id : 0);
          }},
         {"default_definition", LongText,
          [](const ColumnRow &r, const Context &) { return textOrNull(r.column->defaultValue.text); }},
         {"computed_definition", LongText,
          [](const ColumnRow &r, const Context &) { return textOrNull(r.column->computed.text); }},
         {"seed_value", Variant,
          [](const ColumnRow &r, const Context &) {
              return r.column->identity && r.table
                         ? variant(r.table->identity->seed(),
                                   r.column->type.id == TypeId::Decimal ? BigInt : r.column->type)
                         : Value();
          }},
         {"increment_value", Variant,
          [](const ColumnRow &r, const Context &) {
              return r.column->identity && r.table
                         ? variant(r.table->identity->increment(),
                                   r.column->type.id == TypeId::Decimal ? BigInt : r.column->type)
                         : Value();
          }},
         {"last_value", Variant, [](const ColumnRow &r, const Context &) {
              return r.column->identity && r.table && r.table->identity->last()
                         ? variant(*r.table->identity->last(),
                                   r.column->type.id == TypeId::Decimal ? BigInt : r.column->type)
                         : Value();
          }}});
    return table;
}

// types$

struct TypeRow
{
    std::string name;
    int systemId, userId, schema;
    SqlType type;
    bool nullable = true;
    UserTypePtr userType;
};

std::vector<TypeRow> listTypes(const Context &context)
{
    std::vector<TypeRow> rows;
    for (const SystemType &type : systemTypes())
        if (hasType(context.server.edition, asciiUpper(std::string(type.name))))
            rows.push_back({std::string(type.name), type.systemId, type.userId, 4, type.type,
                            type.name != "sysname", nullptr});
    for (const UserTypePtr &type : context.database->types()) {
        const auto schema = context.database->findSchema(type->schema);
        rows.push_back({type->name, type->table ? 243 : systemTypeId(type->base), type->id,
                        schema ? schema->id : 1, type->base, type->nullable, type});
    }
    return rows;
}

const CatalogTable &types()
{
    static const TypedCatalogTable<TypeRow> table(
        listTypes,
        {{"user_type_id", Int, [](const TypeRow &r, const Context &) { return number(r.userId); }},
         {"name", Name, [](const TypeRow &r, const Context &) { return text(r.name); }},
         {"system_type_id", TinyInt, [](const TypeRow &r, const Context &) { return number(r.systemId); }},
         {"schema_id", Int, [](const TypeRow &r, const Context &) { return number(r.schema); }},
         {"max_length", SmallInt,
          [](const TypeRow &r, const Context &) {
              return number(r.userType && r.userType->table ? -1 : catalogLength(r.type));
          }},
         {"precision", TinyInt,
          [](const TypeRow &r, const Context &) {
              return number(r.userType && r.userType->table ? 0 : catalogPrecision(r.type));
          }},
         {"scale", TinyInt,
          [](const TypeRow &r, const Context &) {
              return number(r.userType && r.userType->table ? 0 : catalogScale(r.type));
          }},
         {"collation_name", Name, [](const TypeRow &r, const Context &) { return collationOfType(r.type); }},
         {"is_nullable", Bit, [](const TypeRow &r, const Context &) { return flag(r.nullable); }},
         {"is_user_defined", Bit,
          [](const TypeRow &r, const Context &) { return flag(r.userType != nullptr); }},
         {"is_assembly_type", Bit,
          [](const TypeRow &r, const Context &) {
              return flag(r.userId >= 128 && r.userId <= 130 && r.systemId == 240);
          }},
         {"is_table_type", Bit,
          [](const TypeRow &r, const Context &) { return flag(r.userType && r.userType->table); }},
         {"type_table_object_id", Int, [](const TypeRow &r, const Context &) {
              return r.userType && r.userType->table ? number(r.userType->table->id) : Value();
          }}});
    return table;
}

// parameters$

struct ParameterRow
{
    ModulePtr module;
    int ordinal; ///< 0 for what a function returns
    const ModuleParameter *parameter() const
    {
        return ordinal == 0 ? nullptr : &module->parameters[static_cast<std::size_t>(ordinal - 1)];
    }
    const SqlType &type() const { return ordinal == 0 ? module->result : parameter()->type; }
    const UserTypePtr userType() const { return ordinal == 0 ? nullptr : parameter()->userType; }
    bool isTable() const { return userType() && userType()->table; }
};

std::vector<ParameterRow> listParameters(const Context &context)
{
    std::vector<ParameterRow> rows;
    for (const ObjectPtr &object : context.database->objects()) {
        const auto module = std::dynamic_pointer_cast<const Module>(object);
        if (!module)
            continue;
        if (module->kind == ObjectKind::ScalarFunction)
            rows.push_back({module, 0});
        for (int i = 1; i <= static_cast<int>(module->parameters.size()); ++i)
            rows.push_back({module, i});
    }
    return rows;
}

const CatalogTable &parameters()
{
    using Row = ParameterRow;
    static const TypedCatalogTable<Row> table(
        listParameters,
        {{"object_id", Int, [](const Row &r, const Context &) { return number(r.module->id); }},
         {"name", Name,
          [](const Row &r, const Context &) {
              return text(r.ordinal == 0 ? std::string() : r.parameter()->name);
          }},
         {"parameter_id", Int, [](const Row &r, const Context &) { return number(r.ordinal); }},
         {"system_type_id", TinyInt,
          [](const Row &r, const Context &) { return number(r.isTable() ? 243 : systemTypeId(r.type())); }},
         {"user_type_id", Int,
          [](const Row &r, const Context &) { return number(userTypeOf(r.type(), r.userType())); }},
         {"max_length", SmallInt,
          [](const Row &r, const Context &) { return number(r.isTable() ? -1 : catalogLength(r.type())); }},
         {"precision", TinyInt,
          [](const Row &r, const Context &) { return number(r.isTable() ? 0 : catalogPrecision(r.type())); }},
         {"scale", TinyInt,
          [](const Row &r, const Context &) { return number(r.isTable() ? 0 : catalogScale(r.type())); }},
         {"is_output", Bit,
          [](const Row &r, const Context &) { return flag(r.ordinal == 0 || r.parameter()->output); }},
         {"has_default_value", Bit, [](const Row &, const Context &) { return flag(false); }},
         {"is_readonly", Bit, [](const Row &r, const Context &) { return flag(r.isTable()); }}});
    return table;
}

// trigger_events$

struct TriggerEventRow
{
    ModulePtr trigger;
    int type; ///< 1 INSERT, 2 UPDATE, 3 DELETE
};

std::vector<TriggerEventRow> listTriggerEvents(const Context &context)
{
    std::vector<TriggerEventRow> rows;
    for (const ObjectPtr &object : context.database->objects()) {
        const auto trigger = std::dynamic_pointer_cast<const Module>(object);
        if (!trigger || trigger->kind != ObjectKind::Trigger)
            continue;
        const Ast::ModuleDefinition &definition = *trigger->definition;
        const bool events[] = {definition.onInsert, definition.onUpdate, definition.onDelete};
        for (int i = 0; i < 3; ++i)
            if (events[i])
                rows.push_back({trigger, i + 1});
    }
    return rows;
}

const CatalogTable &triggerEvents()
{
    using Row = TriggerEventRow;
    static const TypedCatalogTable<Row> table(
        listTriggerEvents,
        {{"object_id", Int, [](const Row &r, const Context &) { return number(r.trigger->id); }},
         {"type", Int, [](const Row &r, const Context &) { return number(r.type); }}});
    return table;
}

// schemas$, databases$, properties$, sessions$

std::vector<Schema> listSchemas(const Context &context)
{
    return context.database->schemas();
}

const CatalogTable &schemas()
{
    static const TypedCatalogTable<Schema> table(
        listSchemas, {{"schema_id", Int, [](const Schema &s, const Context &) { return number(s.id); }},
                      {"name", Name, [](const Schema &s, const Context &) { return text(s.name); }}});
    return table;
}

std::vector<DatabasePtr> listDatabases(const Context &context)
{
    std::vector<DatabasePtr> all = context.server.databases.all();
    // An Azure database lists itself and master; only master lists all databases.
    if (context.server.edition == Edition::Azure)
        std::erase_if(all, [&](const DatabasePtr &database) {
            const std::string name = database->name();
            return name == "model" || name == "tempdb" ||
                   (context.database->name() != "master" && database != context.database && name != "master");
        });
    return all;
}

const CatalogTable &databases()
{
    static const TypedCatalogTable<DatabasePtr> table(
        listDatabases,
        {{"database_id", Int, [](const DatabasePtr &d, const Context &) { return number(d->id()); }},
         {"name", Name, [](const DatabasePtr &d, const Context &) { return text(d->name()); }},
         {"create_date", DateTime,
          [](const DatabasePtr &d, const Context &) { return Value(d->created()); }}});
    return table;
}

std::vector<ExtendedProperty> listProperties(const Context &context)
{
    return context.database->properties();
}

const CatalogTable &properties()
{
    using Row = ExtendedProperty;
    static const TypedCatalogTable<Row> table(
        listProperties, {{"major_id", Int, [](const Row &r, const Context &) { return number(r.major); }},
                         {"minor_id", Int, [](const Row &r, const Context &) { return number(r.minor); }},
                         {"class", TinyInt, [](const Row &r, const Context &) { return number(r.type); }},
                         {"name", Name, [](const Row &r, const Context &) { return text(r.name); }},
                         {"value", Variant, [](const Row &r, const Context &) {
                              return Value(std::make_shared<const VariantValue>(
                                  VariantValue{{TypeId::NVarChar, 4000}, r.value}));
                          }}});
    return table;
}

std::vector<SessionInfo> listSessions(const Context &context)
{
    return context.server.sessions();
}

const CatalogTable &sessions()
{
    using Row = SessionInfo;
    static const TypedCatalogTable<Row> table(
        listSessions,
        {{"session_id", SmallInt, [](const Row &r, const Context &) { return number(r.id); }},
         {"login_name", Name, [](const Row &r, const Context &) { return text(r.login); }},
         {"host_name", Name, [](const Row &r, const Context &) { return text(r.host); }},
         {"program_name", Name, [](const Row &r, const Context &) { return text(r.program); }},
         {"database_id", SmallInt, [](const Row &r, const Context &) { return number(r.database); }},
         {"login_time", DateTime, [](const Row &r, const Context &) { return Value(r.loginTime); }},
         {"request_time", DateTime, [](const Row &r, const Context &) { return Value(r.requestTime); }},
         {"is_running", Bit, [](const Row &r, const Context &) { return flag(r.isRunning); }},
         {"text", LongText, [](const Row &r, const Context &) { return text(r.text); }}});
    return table;
}

} // namespace

const CatalogTable *findCatalogTable(std::string_view name)
{
    static const std::map<std::string_view, const CatalogTable &(*)()> tables = {
        {"objects$", objects},
        {"columns$", columns},
        {"types$", types},
        {"indexes$", indexesTable},
        {"index_columns$", indexColumnsTable},
        {"foreign_keys$", foreignKeysTable},
        {"foreign_key_columns$", foreignKeyColumnsTable},
        {"dependencies$", dependenciesTable},
        {"parameters$", parameters},
        {"trigger_events$", triggerEvents},
        {"schemas$", schemas},
        {"databases$", databases},
        {"properties$", properties},
        {"sessions$", sessions}};
    const auto found = tables.find(name);
    return found == tables.end() ? nullptr : &found->second();
}

} // namespace SampleServer
