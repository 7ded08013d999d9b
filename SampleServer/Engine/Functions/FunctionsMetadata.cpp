#include "Engine/Catalog/CatalogObjects.h"
#include "Engine/Catalog/CatalogTypes.h"
#include "Engine/Catalog/SystemCatalog.h"
#include "Engine/Functions/FunctionResults.h"
#include "Engine/Functions/FunctionTable.h"
#include "Engine/Parse/NameText.h"
#include "Types/Collation.h"
#include "Types/DecimalMath.h"
#include "Types/Text.h"

#include <algorithm>

// Catalog functions in expressions.
namespace SampleServer::Functions {

using namespace Bound;

namespace {

SqlType longTextResult(const ArgumentList &)
{
    return {TypeId::NVarChar, SqlType::Max, 0, 0};
}

/// An item with an id: an object, or a constraint and its table.
struct Known
{
    ObjectPtr object;
    TablePtr table; ///< that the constraint belongs to, or the object itself
    std::string name, code;
};

Known known(EvaluationContext &context, std::int64_t id, const std::string &database = {})
{
    Known result;
    if (id < 0) {
        for (const ModulePtr &view : systemViews(context.edition))
            if (view->id == id)
                return {view, nullptr, view->name, "V"};
        return result;
    }
    const DatabasePtr place = context.findDatabase(database);
    if (!place)
        return result;
    result.object = place->find(id);
    for (const UserTypePtr &type : place->types())
        if (type->table && type->table->id == id)
            result.object = type->table;
    if (result.object) {
        result.name = result.object->name;
        result.code = codeOf(result.object->kind);
        result.table = std::dynamic_pointer_cast<const Table>(result.object);
        if (const auto *module = dynamic_cast<const Module *>(result.object.get()))
            result.table = module->indexed;
        return result;
    }
    result.table = place->findConstraint(id);
    result.object = result.table;
    if (!result.table)
        return result;
    for (const ConstraintName *constraint : result.table->constraints())
        if (constraint->id == id)
            result.name = constraint->name;
    for (const TableIndex &index : result.table->indexes)
        if (index.isKey() && index.constraint.id == id)
            result.code = index.role == TableIndex::Role::PrimaryKey ? "PK" : "UQ";
    for (const ForeignKey &key : result.table->foreignKeys)
        if (key.constraint.id == id)
            result.code = "F";
    for (const CheckConstraint &check : result.table->checks)
        if (check.constraint.id == id)
            result.code = "C";
    if (result.code.empty())
        result.code = "D";
    return result;
}

std::string databaseOf(EvaluationContext &context, Arguments a, std::size_t place)
{
    if (a.size() <= place || isNull(a[place]))
        return {};
    return context.databaseName(number(a[place])).value_or("?");
}

Value objectId(EvaluationContext &context, const Operation &, Arguments a)
{
    const auto id = context.objectId(text(a[0]));
    if (!id || a.size() < 2)
        return id ? Value(*id) : Value();
    const Ast::ObjectName name = nameFromText(text(a[0]));
    const Known found = known(context, *id, name.qualifier(2));
    return found.code.empty() || found.code == asciiUpper(trimmed(text(a[1]))) ? Value(*id) : Value();
}

Value objectName(EvaluationContext &context, const Operation &, Arguments a)
{
    if (isNull(a[0]))
        return {};
    const Known found = known(context, number(a[0]), databaseOf(context, a, 1));
    return found.object ? Value(found.name) : Value();
}

Value objectSchemaName(EvaluationContext &context, const Operation &, Arguments a)
{
    if (isNull(a[0]))
        return {};
    const Known found = known(context, number(a[0]), databaseOf(context, a, 1));
    return found.object ? Value(found.object->schema) : Value();
}

Value objectDefinition(EvaluationContext &context, const Operation &, Arguments a)
{
    const Known found = known(context, number(a[0]));
    if (const auto *module = dynamic_cast<const Module *>(found.object.get()))
        return module->definition->encrypted ? Value() : Value(module->text);
    if (!found.table)
        return {};
    for (const CheckConstraint &check : found.table->checks)
        if (check.constraint.id == number(a[0]))
            return check.condition.text;
    for (const TableColumn &column : found.table->columns)
        if (column.defaultValue && column.defaultName.id == number(a[0]))
            return column.defaultValue.text;
    return {};
}

/// The columns of a table, view or function.
const std::vector<TableColumn> *columnsOf(const Known &found)
{
    if (found.table)
        return &found.table->columns;
    const auto *module = dynamic_cast<const Module *>(found.object.get());
    return module ? &module->columns : nullptr;
}

Value columnName(EvaluationContext &context, const Operation &, Arguments a)
{
    const Known found = known(context, number(a[0]));
    if (const auto *columns = columnsOf(found))
        for (const TableColumn &column : *columns)
            if (column.id == number(a[1]))
                return column.name;
    return {};
}

const TableColumn *findColumn(const std::vector<TableColumn> *columns, const std::string &name)
{
    if (columns)
        for (const TableColumn &column : *columns)
            if (foldedName(column.name) == foldedName(name))
                return &column;
    return nullptr;
}

Value columnLength(EvaluationContext &context, const Operation &, Arguments a)
{
    const auto id = context.objectId(text(a[0]));
    const Known found = id ? known(context, *id, nameFromText(text(a[0])).qualifier(2)) : Known();
    const TableColumn *column = findColumn(columnsOf(found), text(a[1]));
    return column ? Value(std::int64_t{catalogLength(column->type)}) : Value();
}

Value columnProperty(EvaluationContext &context, const Operation &, Arguments a)
{
    const Known found = known(context, number(a[0]));
    const std::string property = asciiUpper(text(a[2]));
    if (const auto *module = dynamic_cast<const Module *>(found.object.get()))
        for (std::size_t i = 0; i < module->parameters.size(); ++i)
            if (foldedName(module->parameters[i].name) == foldedName(text(a[1])))
                return property == "ISOUTPARAM" ? truth(module->parameters[i].output)
                       : property == "COLUMNID" ? Value(static_cast<std::int64_t>(i + 1))
                       : property == "PRECISION"
                           ? Value(std::int64_t{catalogPrecision(module->parameters[i].type)})
                           : Value();
    const TableColumn *column = findColumn(columnsOf(found), text(a[1]));
    if (!column)
        return {};
    if (property == "ALLOWSNULL")
        return truth(column->nullable);
    if (property == "COLUMNID")
        return std::int64_t{column->id};
    if (property == "ISIDENTITY")
        return truth(column->identity);
    if (property == "ISCOMPUTED")
        return truth(static_cast<bool>(column->computed));
    if (property == "ISROWGUIDCOL")
        return truth(column->rowGuid);
    if (property == "ISSPARSE")
        return truth(column->sparse);
    if (property == "PRECISION")
        return std::int64_t{catalogPrecision(column->type) != 0 ? catalogPrecision(column->type)
                                                                : column->type.length};
    if (property == "SCALE")
        return std::int64_t{catalogScale(column->type)};
    if (property == "ISIDNOTFORREPL" || property == "ISOUTPARAM" || property == "ISHIDDEN" ||
        property == "ISCOLUMNSET")
        return truth(false);
    if (property == "USESANSITRIM" || property == "ISDETERMINISTIC" || property == "ISINDEXABLE")
        return truth(true);
    return {};
}

Value objectProperty(EvaluationContext &context, const Operation &, Arguments a)
{
    const Known found = known(context, number(a[0]));
    if (!found.object)
        return {};
    const std::string property = asciiUpper(text(a[1]));
    static constexpr std::pair<std::string_view, std::string_view> kinds[] = {
        {"ISTABLE", "U"},     {"ISUSERTABLE", "U"},       {"ISVIEW", "V"},
        {"ISPROCEDURE", "P"}, {"ISSCALARFUNCTION", "FN"}, {"ISINLINEFUNCTION", "IF"},
        {"ISTRIGGER", "TR"},  {"ISPRIMARYKEY", "PK"},     {"ISFOREIGNKEY", "F"},
        {"ISCHECKCNST", "C"}, {"ISDEFAULTCNST", "D"},     {"ISUNIQUECNST", "UQ"}};
    for (const auto &[name, code] : kinds)
        if (name == property)
            return truth(found.code == code);
    const auto *module = dynamic_cast<const Module *>(found.object.get());
    if (property == "ISTABLEFUNCTION")
        return truth(found.code == "TF" || found.code == "IF");
    if (property == "ISCONSTRAINT")
        return truth(found.object->id != number(a[0]));
    if (property == "ISMSSHIPPED" || property == "ISSYSTEMTABLE")
        return truth(property == "ISMSSHIPPED" && number(a[0]) < 0);
    if (property == "ISENCRYPTED")
        return truth(module && module->definition->encrypted);
    if (property == "ISSCHEMABOUND")
        return truth(module && module->definition->schemaBound);
    if (property == "EXECISANSINULLSON" || property == "ISANSINULLSON" || property == "ISQUOTEDIDENTON")
        return truth(true);
    if (property == "EXECISQUOTEDIDENTON")
        return truth(!module || module->quotedIdentifiers);
    if (module && module->kind == ObjectKind::Trigger) {
        if (property == "EXECISTRIGGERDISABLED")
            return truth(module->disabled);
        if (property == "EXECISINSTEADOFTRIGGER")
            return truth(module->definition->insteadOf);
        if (property == "EXECISAFTERTRIGGER")
            return truth(!module->definition->insteadOf);
        if (property == "EXECISINSERTTRIGGER")
            return truth(module->definition->onInsert);
        if (property == "EXECISUPDATETRIGGER")
            return truth(module->definition->onUpdate);
        if (property == "EXECISDELETETRIGGER")
            return truth(module->definition->onDelete);
    }
    if (property == "SCHEMAID" || property == "OWNERID") {
        const auto schema = context.findDatabase({})->findSchema(found.object->schema);
        return schema ? Value(std::int64_t{property == "OWNERID" ? 1 : schema->id}) : Value();
    }
    if (!found.table)
        return {};
    const auto &indexes = found.table->indexes;
    const auto has = [&](auto test) { return truth(std::any_of(indexes.begin(), indexes.end(), test)); };
    if (property == "TABLEHASPRIMARYKEY")
        return truth(found.table->primaryKey());
    if (property == "TABLEHASIDENTITY")
        return truth(found.table->identity != nullptr);
    if (property == "TABLEHASCLUSTINDEX")
        return has([](const TableIndex &index) { return index.isClustered(); });
    if (property == "TABLEHASINDEX")
        return truth(!indexes.empty());
    if (property == "TABLEHASFOREIGNKEY")
        return truth(!found.table->foreignKeys.empty());
    if (property == "TABLEHASFOREIGNREF")
        return truth(!context.findDatabase({})->referencing(found.table->id).empty());
    if (property == "CNSTISDELETECASCADE" || property == "CNSTISUPDATECASCADE") {
        for (const ForeignKey &key : found.table->foreignKeys)
            if (key.constraint.id == number(a[0]))
                return truth((property == "CNSTISDELETECASCADE" ? key.onDelete : key.onUpdate) ==
                             ReferentialAction::Cascade);
    }
    if (property == "CNSTISCLUSTKEY" || property == "CNSTISDISABLED" || property == "CNSTISNOTTRUSTED") {
        for (const TableIndex &index : indexes)
            if (index.isKey() && index.constraint.id == number(a[0]))
                return truth(property == "CNSTISCLUSTKEY" && index.isClustered());
        for (const ForeignKey &key : found.table->foreignKeys)
            if (key.constraint.id == number(a[0]))
                return truth(property == "CNSTISDISABLED" ? !key.enabled : !key.trusted);
        for (const CheckConstraint &check : found.table->checks)
            if (check.constraint.id == number(a[0]))
                return truth(property == "CNSTISDISABLED" ? !check.enabled : !check.trusted);
    }
    return {};
}

Value objectPropertyEx(EvaluationContext &context, const Operation &operation, Arguments a)
{
    if (asciiUpper(text(a[1])) == "BASETYPE") {
        const Known found = known(context, number(a[0]));
        return found.object ? variant({TypeId::Char, 2, 0, 0}, padded(found.code)) : Value();
    }
    const Value value = objectProperty(context, operation, a);
    return isNull(value) ? Value() : variant(IntType, value);
}

Value indexProperty(EvaluationContext &context, const Operation &, Arguments a)
{
    const Known found = known(context, number(a[0]));
    const TableIndex *index = found.table ? found.table->findIndex(text(a[1])) : nullptr;
    if (!index)
        return {};
    const std::string property = asciiUpper(text(a[2]));
    if (property == "INDEXID")
        return std::int64_t{index->id};
    if (property == "ISUNIQUE")
        return truth(index->unique);
    if (property == "ISCLUSTERED")
        return truth(index->isClustered());
    if (property == "ISDISABLED")
        return truth(index->disabled);
    if (property == "ISPADINDEX")
        return truth(index->padded);
    if (property == "INDEXFILLFACTOR")
        return std::int64_t{index->fillFactor};
    if (property == "ISSTATISTICS" || property == "ISHYPOTHETICAL" || property == "ISAUTOSTATISTICS" ||
        property == "ISPAGELOCKDISALLOWED" || property == "ISROWLOCKDISALLOWED" ||
        property == "ISCOLUMNSTORE" || property == "ISFULLTEXTKEY" || property == "INDEXDEPTH")
        return truth(false);
    return {};
}

Value indexColumn(EvaluationContext &context, const Operation &, Arguments a)
{
    const auto id = context.objectId(text(a[0]));
    const Known found = id ? known(context, *id, nameFromText(text(a[0])).qualifier(2)) : Known();
    if (!found.table)
        return {};
    const auto ordinal = static_cast<std::size_t>(std::max<std::int64_t>(number(a[2]), 0));
    for (const TableIndex &index : found.table->indexes)
        if (index.id == number(a[1]) && ordinal >= 1 && ordinal <= index.columns.size())
            return found.table->columns[index.columns[ordinal - 1]].name;
    return {};
}

Value indexKeyProperty(EvaluationContext &context, const Operation &, Arguments a)
{
    const Known found = known(context, number(a[0]));
    const auto ordinal = static_cast<std::size_t>(std::max<std::int64_t>(number(a[2]), 0));
    if (found.table)
        for (const TableIndex &index : found.table->indexes)
            if (index.id == number(a[1]) && ordinal >= 1 && ordinal <= index.columns.size()) {
                if (asciiUpper(text(a[3])) == "ISDESCENDING")
                    return truth(index.descending[ordinal - 1]);
                return std::int64_t{found.table->columns[index.columns[ordinal - 1]].id};
            }
    return {};
}

template <int Which>
Value identityValue(EvaluationContext &context, const Operation &, Arguments a)
{
    const auto id = context.objectId(text(a[0]));
    const Known found = id ? known(context, *id, nameFromText(text(a[0])).qualifier(2)) : Known();
    if (!found.table || !found.table->identity)
        return {};
    const IdentityCounter &counter = *found.table->identity;
    return decimalFromInteger(Which == 0   ? counter.seed()
                              : Which == 1 ? counter.increment()
                                           : counter.last().value_or(counter.seed()));
}

Value nothing(EvaluationContext &, const Operation &, Arguments)
{
    return {};
}

/// There is one filegroup only.
Value filegroupName(EvaluationContext &, const Operation &, Arguments a)
{
    return number(a[0]) == 1 ? Value(std::string("PRIMARY")) : Value();
}

/// The code page of the server's collations; null for other properties and names.
Value collationProperty(EvaluationContext &, const Operation &, Arguments a)
{
    const std::string name = asciiUpper(text(a[0]));
    const bool isKnown = name == "SQL_LATIN1_GENERAL_CP1_CI_AS" || name == "LATIN1_GENERAL_CI_AS";
    return isKnown && asciiUpper(text(a[1])) == "CODEPAGE" ? Value(std::int64_t{1252}) : Value();
}

constexpr Builtin metadataBuiltins[] = {
    {"COLLATIONPROPERTY", 2, 2, "tt", intResult, collationProperty},
    {"COLUMNPROPERTY", 3, 3, "itt", intResult, columnProperty, true, false},
    {"COL_LENGTH", 2, 2, "tt", smallIntResult, columnLength, true, false},
    {"COL_NAME", 2, 2, "ii", nameResult, columnName, true, false},
    {"DATABASE_PRINCIPAL_ID", 0, 1, "t", intResult, yes, false},
    {"FILEGROUP_NAME", 1, 1, "i", nameResult, filegroupName},
    {"FILEPROPERTY", 2, 2, "tt", intResult, nothing},
    {"HAS_PERMS_BY_NAME", 3, 5, "t", intResult, yes, false},
    {"IDENT_CURRENT", 1, 1, "t", identityResult, identityValue<2>, true, false},
    {"IDENT_INCR", 1, 1, "t", identityResult, identityValue<1>, true, false},
    {"IDENT_SEED", 1, 1, "t", identityResult, identityValue<0>, true, false},
    {"INDEXKEY_PROPERTY", 4, 4, "iiit", intResult, indexKeyProperty, true, false},
    {"INDEXPROPERTY", 3, 3, "itt", intResult, indexProperty, true, false},
    {"INDEX_COL", 3, 3, "tii", nameResult, indexColumn, true, false},
    {"IS_ROLEMEMBER", 1, 2, "t", intResult, yes},
    {"OBJECTPROPERTY", 2, 2, "it", intResult, objectProperty, true, false},
    {"OBJECTPROPERTYEX", 2, 2, "it", variantResult, objectPropertyEx, true, false},
    {"OBJECT_DEFINITION", 1, 1, "i", longTextResult, objectDefinition, true, false},
    {"OBJECT_ID", 1, 2, "t", intResult, objectId},
    {"OBJECT_NAME", 1, 2, "i", nameResult, objectName, false, false},
    {"OBJECT_SCHEMA_NAME", 1, 2, "i", nameResult, objectSchemaName, false, false},
};

} // namespace

std::span<const Builtin> metadataFunctions()
{
    return metadataBuiltins;
}

} // namespace SampleServer::Functions
