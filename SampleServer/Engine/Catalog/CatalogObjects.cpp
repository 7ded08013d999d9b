#include "Engine/Catalog/CatalogObjects.h"
#include "Engine/Catalog/SystemCatalog.h"
#include "Types/Collation.h"

#include <map>

namespace SampleServer {

namespace {

constexpr std::pair<std::string_view, const char *> descriptions[] = {
    {"C", "CHECK_CONSTRAINT"},
    {"D", "DEFAULT_CONSTRAINT"},
    {"F", "FOREIGN_KEY_CONSTRAINT"},
    {"FN", "SQL_SCALAR_FUNCTION"},
    {"IF", "SQL_INLINE_TABLE_VALUED_FUNCTION"},
    {"P", "SQL_STORED_PROCEDURE"},
    {"PK", "PRIMARY_KEY_CONSTRAINT"},
    {"SN", "SYNONYM"},
    {"TF", "SQL_TABLE_VALUED_FUNCTION"},
    {"TR", "SQL_TRIGGER"},
    {"TT", "TYPE_TABLE"},
    {"U", "USER_TABLE"},
    {"UQ", "UNIQUE_CONSTRAINT"},
    {"V", "VIEW"}};

/// The rows of a table's constraints.
void addConstraints(const ObjectRow &parent, std::vector<ObjectRow> &rows)
{
    const auto add = [&](const ConstraintName &name, std::string_view code, auto ObjectRow::*detail,
                         const auto *value) {
        ObjectRow row = parent;
        row.parent = parent.id;
        row.id = name.id;
        row.name = name.name;
        row.code = code;
        row.*detail = value;
        rows.push_back(std::move(row));
    };
    for (const TableIndex &index : parent.table->indexes)
        if (index.isKey())
            add(index.constraint, index.role == TableIndex::Role::PrimaryKey ? "PK" : "UQ", &ObjectRow::index,
                &index);
    for (const ForeignKey &key : parent.table->foreignKeys)
        add(key.constraint, "F", &ObjectRow::key, &key);
    for (const CheckConstraint &check : parent.table->checks)
        add(check.constraint, "C", &ObjectRow::check, &check);
    for (const TableColumn &column : parent.table->columns)
        if (column.defaultValue)
            add(column.defaultName, "D", &ObjectRow::column, &column);
}

} // namespace

std::string_view codeOf(ObjectKind kind)
{
    static constexpr std::string_view codes[] = {"U", "V", "P", "FN", "IF", "TF", "TR", "SN", "TT"};
    return codes[static_cast<std::size_t>(kind)];
}

std::string typeDescription(std::string_view code)
{
    for (const auto &[known, description] : descriptions)
        if (known == code)
            return description;
    return {};
}

std::string padded(std::string_view code)
{
    std::string text(code);
    text.resize(2, ' ');
    return text;
}

std::string ObjectRow::definition() const
{
    if (module)
        return isEncrypted() ? std::string() : module->text;
    if (check)
        return check->condition.text;
    return column ? column->defaultValue.text : std::string();
}

bool ObjectRow::isEncrypted() const
{
    return module && module->definition->encrypted;
}

bool ObjectRow::isDisabled() const
{
    return (module && module->disabled) || (key && !key->enabled) || (check && !check->enabled);
}

bool ObjectRow::isNotTrusted() const
{
    return (key && !key->trusted) || (check && !check->trusted);
}

bool ObjectRow::isSystemNamed() const
{
    const ConstraintName *constraint = index    ? &index->constraint
                                       : key    ? &key->constraint
                                       : check  ? &check->constraint
                                       : column ? &column->defaultName
                                                : nullptr;
    return constraint && constraint->systemNamed;
}

int ObjectRow::parentColumn() const
{
    return check ? check->columnId : column ? column->id : 0;
}

std::string ObjectRow::synonymTarget() const
{
    const auto *synonym = dynamic_cast<const Synonym *>(object.get());
    return synonym ? synonym->targetText : std::string();
}

std::vector<ObjectPtr> allObjects(const CatalogContext &context)
{
    std::vector<ObjectPtr> objects = context.database->objects();
    for (const UserTypePtr &type : context.database->types())
        if (type->table)
            objects.push_back(type->table);
    return objects;
}

std::vector<ObjectRow> listObjects(const CatalogContext &context)
{
    std::map<std::string, int> schemas;
    for (const Schema &schema : context.database->schemas())
        schemas[foldedName(schema.name)] = schema.id;
    std::vector<ObjectRow> rows;
    const auto add = [&](const ObjectPtr &object) {
        ObjectRow row;
        row.id = object->id;
        row.name = object->name;
        row.schema = object->kind == ObjectKind::TableType ? 4 : schemas[foldedName(object->schema)];
        row.code = codeOf(object->kind);
        row.created = object->created;
        row.modified = object->modified;
        row.object = object;
        row.table = dynamic_cast<const Table *>(object.get());
        row.module = dynamic_cast<const Module *>(object.get());
        row.parent = row.module ? row.module->parent : 0;
        if (object->kind == ObjectKind::TableType)
            row.name = "TT_" + object->name + '_' + std::to_string(object->id);
        rows.push_back(row);
        if (row.table)
            addConstraints(row, rows);
    };
    for (const ObjectPtr &object : allObjects(context))
        add(object);
    const Edition edition = context.server.edition;
    for (const ModulePtr &view : systemViews(edition))
        if (showsSystemView(edition, *view, true))
            add(view);
    return rows;
}

} // namespace SampleServer
