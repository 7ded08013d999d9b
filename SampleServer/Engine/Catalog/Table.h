#pragma once

#include "Engine/Catalog/SchemaObject.h"
#include "Types/SqlType.h"

#include <mutex>
#include <optional>
#include <vector>

namespace SampleServer {

struct TableColumn
{
    std::string name;
    int id = 1;      ///< from 1, never reused
    int storage = 1; ///< SQLite's name of the column is "c" and this number
    SqlType type;
    UserTypePtr userType; ///< its declared alias type; null for a system type
    bool nullable = true;
    bool identity = false;
    bool rowGuid = false;
    bool rowVersion = false; ///< gets a new number when its row changes
    bool sparse = false;
    bool persisted = false;
    DefinedExpression defaultValue;
    ConstraintName defaultName; ///< of the default
    DefinedExpression computed; ///< set for a computed column

    std::string physicalName() const { return 'c' + std::to_string(storage); }
};

/// An index, including that of a PRIMARY KEY or UNIQUE constraint.
struct TableIndex
{
    enum class Role { Index, PrimaryKey, UniqueConstraint };

    std::string name;
    int id = 2; ///< 1 for the clustered one
    Role role = Role::Index;
    ConstraintName constraint; ///< of a key
    bool unique = false;
    bool disabled = false;
    bool ignoresDuplicates = false;
    bool padded = false;
    int fillFactor = 0;
    std::vector<std::size_t> columns; ///< positions in Table::columns
    std::vector<bool> descending;     ///< one per column
    std::vector<std::size_t> included;
    DefinedExpression filter;
    std::string physicalName; ///< SQLite's name; empty if the engine itself checks for duplicates

    bool isClustered() const { return id == 1; }
    bool isKey() const { return role != Role::Index; }
};

struct ForeignKey
{
    ConstraintName constraint;
    std::vector<std::size_t> columns;   ///< positions in Table::columns
    std::int64_t referencedTable = 0;   ///< its object id
    std::vector<int> referencedColumns; ///< their ids
    ReferentialAction onDelete = ReferentialAction::NoAction;
    ReferentialAction onUpdate = ReferentialAction::NoAction;
    bool enabled = true;
    bool trusted = true;
};

struct CheckConstraint
{
    ConstraintName constraint;
    DefinedExpression condition;
    int columnId = 0; ///< the column that declares it; 0 for a table constraint
    bool enabled = true;
    bool trusted = true;
};

/// Generates the numbers of an IDENTITY column. A rollback does not return them. Guarded by its own lock.
class IdentityCounter
{
public:
    IdentityCounter(std::int64_t seed, std::int64_t increment)
        : m_next(seed)
        , m_seed(seed)
        , m_increment(increment)
    {
    }

    std::int64_t take();
    /// Advances after a row with an explicit value was inserted.
    void sawExplicit(std::int64_t value);
    void restart();
    std::int64_t seed() const { return m_seed; }
    std::int64_t increment() const { return m_increment; }
    /// The last generated number; empty before the first.
    std::optional<std::int64_t> last() const;

private:
    mutable std::mutex m_mutex;
    std::int64_t m_next;
    bool m_used = false;
    const std::int64_t m_seed;
    const std::int64_t m_increment;
};

/// A table's definition; immutable. SQLite's name of the table is "t" and the number `storage`.
struct Table : SchemaObject
{
    std::int64_t storage = 0;
    bool isStored =
        true; ///< false: SQLite's table is created when a statement first needs it; it has no rows yet
    std::vector<TableColumn> columns;
    std::vector<TableIndex> indexes;
    std::vector<ForeignKey> foreignKeys;
    std::vector<CheckConstraint> checks;
    std::shared_ptr<IdentityCounter> identity; ///< null without an IDENTITY column
    int lastColumnId = 0;

    std::string physicalName() const { return 't' + std::to_string(storage); }
    /// Returns the position of a column by name; empty if there is none.
    std::optional<std::size_t> findColumn(std::string_view columnName) const;
    std::optional<std::size_t> findColumnById(int columnId) const;
    const TableIndex *findIndex(std::string_view indexName) const;
    const TableIndex *primaryKey() const;
    /// Returns the names of all constraints of the table.
    std::vector<const ConstraintName *> constraints() const;
};
using TablePtr = std::shared_ptr<const Table>;

/// Returns the next number of a rowversion column: eight bytes, greater than all before.
Value nextRowVersion();

} // namespace SampleServer
