#include "Engine/Run/TableBuilder.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Run/QueryExecutor.h"
#include "Types/Collation.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

namespace {

void requireIdentityType(const TableColumn &column, const std::string &table)
{
    const bool whole = (isInteger(column.type.id) && column.type.id != TypeId::Bit) ||
                       (column.type.id == TypeId::Decimal && column.type.scale == 0);
    if (whole && column.nullable)
        throw EngineError(8147, 16, 1,
                          "Could not create IDENTITY attribute on nullable column '" + column.name +
                              "', table '" + table + "'.",
                          ErrorEffect::EndsBatch);
    if (!whole)
        throw EngineError(
            2749, 16, 2,
            "Identity column '" + column.name +
                "' must be of data type int, bigint, smallint, tinyint, or decimal or numeric with a scale "
                "of 0, unencrypted, and constrained to be nonnullable.",
            ErrorEffect::EndsBatch);
}

/// Generates a constraint name in the server's format.
std::string madeUpName(const char *prefix, const std::string &table, const std::string &column)
{
    char number[20];
    const auto id = static_cast<unsigned long long>(newObjectId()) * 0x9E3779B97F4A7C15u;
    const bool shortNumber = !column.empty(); // defaults and checks of columns
    std::snprintf(number, sizeof number, shortNumber ? "%08llX" : "%016llX", shortNumber ? id >> 32 : id);
    const std::string part = column.empty() ? std::string() : "__" + utf16Substring(column, 0, 5);
    return std::string(prefix) + "__" + utf16Substring(table, 0, 9 - (column.empty() ? 1 : 0)) + part + "__" +
           number;
}

void requireKeyType(const TableColumn &column, const Table &table)
{
    const SqlType &type = column.type;
    if (isLegacyLob(type.id) || type.length == SqlType::Max || type.id == TypeId::Xml)
        throw EngineError(1919, 16, 1,
                          "Column '" + column.name + "' in table '" + table.name +
                              "' is of a type that is invalid for use as a key column in an index.",
                          ErrorEffect::EndsBatch);
}

/// Throws 1776 unless the columns at these positions are a key of the table.
void requireCandidateKey(const Table &referenced, const std::vector<std::size_t> &columns,
                         const ForeignKey &key)
{
    const bool isKey =
        std::any_of(referenced.indexes.begin(), referenced.indexes.end(), [&](const TableIndex &index) {
            return index.unique && !index.filter && index.columns.size() == columns.size() &&
                   std::is_permutation(index.columns.begin(), index.columns.end(), columns.begin());
        });
    if (!isKey)
        throw EngineError(
            1776, 16, 0,
            "There are no primary or candidate keys in the referenced table '" + referenced.name +
                "' that match the referencing column list in the foreign key '" + key.constraint.name + "'.",
            ErrorEffect::EndsBatch);
}

/// Throws 1778 and 1761 unless a column can reference the other.
void requireReference(const Table &table, const TableColumn &own, const Table &referenced,
                      const TableColumn &other, const ForeignKey &key)
{
    if (own.type != other.type)
        throw EngineError(1778, 16, 0,
                          "Column '" + referenced.name + '.' + other.name +
                              "' is not the same data type as referencing column '" + table.name + '.' +
                              own.name + "' in foreign key '" + key.constraint.name + "'.",
                          ErrorEffect::EndsBatch);
    const bool setsNull =
        key.onDelete == ReferentialAction::SetNull || key.onUpdate == ReferentialAction::SetNull;
    if (setsNull && !own.nullable)
        throw EngineError(1761, 16, 0,
                          "Cannot create the foreign key \"" + key.constraint.name +
                              "\" with the SET NULL referential action, because one or more referencing "
                              "columns are not nullable.",
                          ErrorEffect::EndsBatch);
}

} // namespace

TableBuilder::TableBuilder(QueryExecutor &queries, Table table, DatabasePtr database)
    : m_queries(queries)
    , m_table(std::move(table))
    , m_database(std::move(database))
{
}

void TableBuilder::add(const Ast::CreateTable &definition)
{
    for (const Ast::ColumnDefinition &column : definition.columns)
        addColumn(column);
    typeComputedColumns();
    for (const Ast::Constraint &constraint : definition.constraints)
        addConstraint(constraint);
    for (const Ast::CreateIndex &index : definition.indexes)
        addIndex(index);
}

void TableBuilder::addColumn(const Ast::ColumnDefinition &definition)
{
    TableColumn column;
    column.name = definition.name;
    column.id = column.storage = ++m_table.lastColumnId;
    if (m_table.findColumn(column.name))
        throw EngineError(2705, 16, m_database && m_database->find(m_table.schema, m_table.name) ? 4 : 3,
                          "Column names in each table must be unique. Column name '" + column.name +
                              "' in table '" + m_table.name + "' is specified more than once.",
                          ErrorEffect::EndsBatch);
    bool nullable = !definition.identity;
    if (!definition.computed) {
        NamedType named = m_queries.names().findType(definition.type, column.id);
        if (named.userType && named.userType->table)
            throw Errors::unknownType(definition.type.name.toString(), column.id);
        column.type = named.type;
        column.rowVersion = !named.userType && isRowVersion(definition.type.name);
        if (column.rowVersion && std::any_of(m_table.columns.begin(), m_table.columns.end(),
                                             [](const TableColumn &other) { return other.rowVersion; }))
            throw EngineError(2738, 16, 2,
                              "A table can only have one timestamp column. Because table '" + m_table.name +
                                  "' already has one, the column '" + column.name + "' cannot be added.",
                              ErrorEffect::EndsBatch);
        nullable = nullable && !column.rowVersion;
        if (named.userType)
            nullable = named.userType->nullable;
        column.userType = std::move(named.userType);
    }
    column.nullable = definition.nullable.value_or(nullable);
    if (!definition.nullable)
        m_undecided.insert(foldedName(column.name));
    column.identity = definition.identity.has_value();
    column.computed = definition.computed;
    column.persisted = definition.persisted;
    column.rowGuid = definition.rowGuid;
    column.sparse = definition.sparse;
    if (definition.identity) {
        if (m_table.identity)
            throw EngineError(2744, 16, 2,
                              "Multiple identity columns specified for table '" + m_table.name +
                                  "'. Only one identity column per table is allowed.",
                              ErrorEffect::EndsBatch);
        requireIdentityType(column, m_table.name);
        m_table.identity =
            std::make_shared<IdentityCounter>(definition.identity->seed, definition.identity->increment);
    }
    m_table.columns.push_back(std::move(column));
}

/// Returns the given constraint name, which must not be taken, or generates one.
ConstraintName TableBuilder::nameOf(const Ast::Constraint &constraint, const char *prefix) const
{
    ConstraintName name{constraint.name, newObjectId(), constraint.name.empty()};
    if (name.systemNamed) {
        const bool ofColumn = constraint.kind == Ast::ConstraintKind::Check ||
                              constraint.kind == Ast::ConstraintKind::Default ||
                              constraint.kind == Ast::ConstraintKind::ForeignKey;
        name.name = madeUpName(prefix, m_table.name, ofColumn ? constraint.column : std::string());
        return name;
    }
    const auto own = m_table.constraints();
    const bool taken = std::any_of(own.begin(), own.end(), [&](const ConstraintName *other) {
        return foldedName(other->name) == foldedName(name.name);
    });
    if (taken || (m_database && m_database->isTaken(m_table.schema, name.name)))
        throw EngineError(2714, 16, 5,
                          "There is already an object named '" + name.name + "' in the database.",
                          ErrorEffect::EndsBatch);
    return name;
}

std::size_t TableBuilder::requireColumn(const std::string &name, int number) const
{
    if (const auto column = m_table.findColumn(name))
        return *column;
    if (number == 1769)
        throw EngineError(1769, 16, 1,
                          "Foreign key references invalid column '" + name + "' in referencing table '" +
                              m_table.name + "'.",
                          ErrorEffect::EndsBatch);
    throw EngineError(1911, 16, 1, "Column name '" + name + "' does not exist in the target table or view.",
                      ErrorEffect::EndsBatch);
}

void TableBuilder::addConstraint(const Ast::Constraint &constraint, bool trusted)
{
    try {
        makeConstraint(constraint, trusted);
    } catch (const EngineError &error) {
        throw Errors::constraintFailed(error, constraint.kind == Ast::ConstraintKind::ForeignKey ? 1 : 0);
    }
}

void TableBuilder::makeConstraint(const Ast::Constraint &constraint, bool trusted)
{
    switch (constraint.kind) {
    case Ast::ConstraintKind::PrimaryKey:
    case Ast::ConstraintKind::Unique:
        return addKey(constraint);
    case Ast::ConstraintKind::ForeignKey:
        return addForeignKey(constraint, trusted);
    case Ast::ConstraintKind::Check:
        return addCheck(constraint, trusted);
    case Ast::ConstraintKind::Default:
        return addDefault(constraint);
    }
}

TableIndex TableBuilder::makeIndex(const std::vector<Ast::KeyColumn> &columns, bool clustered,
                                   const Ast::IndexOptions &options) const
{
    TableIndex index;
    index.id = clustered ? 1 : 2;
    for (const TableIndex &other : m_table.indexes) {
        if (clustered && other.isClustered())
            throw EngineError(1902, 16, 3,
                              "Cannot create more than one clustered index on table '" + m_table.name +
                                  "'. Drop the existing clustered index '" + other.name +
                                  "' before creating another.",
                              ErrorEffect::EndsBatch);
        if (!clustered)
            index.id = std::max(index.id, other.id + 1);
    }
    for (const Ast::KeyColumn &column : columns) {
        const std::size_t place = requireColumn(column.name, 1911);
        requireKeyType(m_table.columns[place], m_table);
        if (std::find(index.columns.begin(), index.columns.end(), place) != index.columns.end())
            throw EngineError(1909, 16, 1,
                              "Cannot use duplicate column names in index. Column name '" + column.name +
                                  "' listed more than once.",
                              ErrorEffect::EndsBatch);
        index.columns.push_back(place);
        index.descending.push_back(column.descending);
    }
    index.ignoresDuplicates = options.ignoresDuplicates;
    index.padded = options.padded;
    index.fillFactor = options.fillFactor;
    return index;
}

void TableBuilder::addKey(const Ast::Constraint &constraint)
{
    const bool primary = constraint.kind == Ast::ConstraintKind::PrimaryKey;
    if (primary && m_table.primaryKey())
        throw EngineError(8110, 16, 0,
                          "Cannot add multiple PRIMARY KEY constraints to table '" + m_table.name + "'.",
                          ErrorEffect::EndsBatch);
    const bool hasClustered = std::any_of(m_table.indexes.begin(), m_table.indexes.end(),
                                          [](const TableIndex &index) { return index.isClustered(); });
    TableIndex index = makeIndex(constraint.columns, constraint.clustered.value_or(primary && !hasClustered),
                                 constraint.options);
    for (const std::size_t place : index.columns) {
        TableColumn &column = m_table.columns[place];
        if (primary && column.nullable && !m_undecided.contains(foldedName(column.name)))
            throw EngineError(8111, 16, 1,
                              "Cannot define PRIMARY KEY constraint on nullable column in table '" +
                                  m_table.name + "'.",
                              ErrorEffect::EndsBatch);
        column.nullable = column.nullable && !primary;
    }
    index.role = primary ? TableIndex::Role::PrimaryKey : TableIndex::Role::UniqueConstraint;
    index.unique = true;
    index.constraint = nameOf(constraint, primary ? "PK" : "UQ");
    index.name = index.constraint.name;
    m_table.indexes.push_back(std::move(index));
}

void TableBuilder::addForeignKey(const Ast::Constraint &constraint, bool trusted)
{
    ForeignKey key;
    key.constraint = nameOf(constraint, "FK");
    key.onDelete = constraint.onDelete;
    key.onUpdate = constraint.onUpdate;
    key.trusted = trusted;
    for (const Ast::KeyColumn &column : constraint.columns)
        key.columns.push_back(requireColumn(column.name, 1769));
    const bool self = foldedName(constraint.referenced.object()) == foldedName(m_table.name);
    TablePtr found;
    if (!self && m_database)
        found = m_queries.names().findOrNull(constraint.referenced).table;
    if (!self && !found)
        throw EngineError(1767, 16, 0,
                          "Foreign key '" + key.constraint.name + "' references invalid table '" +
                              constraint.referenced.toString() + "'.",
                          ErrorEffect::EndsBatch);
    const Table &referenced = self ? m_table : *found;
    if (m_table.id == 0)
        m_table.id = newObjectId();
    key.referencedTable = referenced.id;
    std::vector<std::string> names = constraint.referencedColumns;
    if (names.empty() && referenced.primaryKey())
        for (const std::size_t column : referenced.primaryKey()->columns)
            names.push_back(referenced.columns[column].name);
    if (names.size() != key.columns.size())
        throw EngineError(1773, 16, 0,
                          "Foreign key '" + key.constraint.name + "' has implicit reference to object '" +
                              referenced.name + "' which does not have a primary key defined on it.",
                          ErrorEffect::EndsBatch);
    std::vector<std::size_t> places;
    for (const std::string &name : names) {
        const auto place = referenced.findColumn(name);
        if (!place)
            throw EngineError(1770, 16, 0,
                              "Foreign key '" + key.constraint.name + "' references invalid column '" + name +
                                  "' in referenced table '" + referenced.name + "'.",
                              ErrorEffect::EndsBatch);
        places.push_back(*place);
        key.referencedColumns.push_back(referenced.columns[*place].id);
    }
    requireCandidateKey(referenced, places, key);
    for (std::size_t i = 0; i < places.size(); ++i)
        requireReference(m_table, m_table.columns[key.columns[i]], referenced, referenced.columns[places[i]],
                         key);
    m_table.foreignKeys.push_back(std::move(key));
}

void TableBuilder::addCheck(const Ast::Constraint &constraint, bool trusted)
{
    CheckConstraint check;
    check.constraint = nameOf(constraint, "CK");
    check.condition = constraint.expression;
    check.trusted = trusted;
    if (!constraint.column.empty()) {
        check.columnId = m_table.columns[requireColumn(constraint.column, 1911)].id;
        for (const TableColumn &other : m_table.columns)
            if (other.id != check.columnId &&
                check.condition.text.find('[' + other.name + ']') != std::string::npos)
                throw EngineError(8141, 16, 0,
                                  "Column CHECK constraint for column '" + constraint.column +
                                      "' references another column, table '" + m_table.name + "'.",
                                  ErrorEffect::EndsBatch);
    }
    m_table.checks.push_back(std::move(check));
}

void TableBuilder::addDefault(const Ast::Constraint &constraint)
{
    TableColumn &column = m_table.columns[requireColumn(constraint.column, 1911)];
    if (column.defaultValue)
        throw EngineError(1781, 16, 1, "Column already has a DEFAULT bound to it.", ErrorEffect::EndsBatch);
    const ConstraintName name = nameOf(constraint, "DF");
    column.defaultValue = constraint.expression;
    column.defaultName = name;
}

void TableBuilder::addIndex(const Ast::CreateIndex &definition)
{
    if (m_table.findIndex(definition.name))
        throw EngineError(1913, 16, 1,
                          "The operation failed because an index or statistics with name '" +
                              definition.name + "' already exists on table '" + m_table.schema + '.' +
                              m_table.name + "'.",
                          ErrorEffect::EndsBatch);
    TableIndex index = makeIndex(definition.columns, definition.clustered, definition.options);
    index.name = definition.name;
    index.unique = definition.unique;
    index.filter = definition.filter;
    for (const std::string &name : definition.included)
        index.included.push_back(requireColumn(name, 1911));
    m_table.indexes.push_back(std::move(index));
}

/// The type of a computed column's expression, which must not reference computed columns.
SqlType TableBuilder::computedType(Binder &types, const TableColumn &column) const
{
    try {
        return types.bindValue(*column.computed.expression)->type;
    } catch (const EngineError &error) {
        for (const TableColumn &other : m_table.columns)
            if (other.computed && error.message.text == Errors::invalidColumn(other.name).message.text)
                throw EngineError(1759, 16, 0,
                                  "Computed column '" + other.name + "' in table '" + m_table.name +
                                      "' is not allowed to be used in another computed-column definition.",
                                  ErrorEffect::EndsBatch);
        throw;
    }
}

void TableBuilder::typeComputedColumns()
{
    Scope scope;
    ScopeSource source;
    source.name = m_table.name;
    for (const TableColumn &column : m_table.columns) {
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
    Binder types = m_queries.binder();
    types.enterScope(scope);
    for (TableColumn &column : m_table.columns)
        if (column.computed) {
            column.type = computedType(types, column);
            column.nullable = true;
        }
}

} // namespace SampleServer
