#include "Engine/Catalog/Table.h"
#include "Types/Collation.h"

#include <atomic>

namespace SampleServer {

std::int64_t IdentityCounter::take()
{
    const std::lock_guard lock(m_mutex);
    const std::int64_t value = m_next;
    m_next += m_increment;
    m_used = true;
    return value;
}

void IdentityCounter::sawExplicit(std::int64_t value)
{
    const std::lock_guard lock(m_mutex);
    if (m_increment > 0 ? value >= m_next : value <= m_next) {
        m_next = value + m_increment;
        m_used = true;
    }
}

void IdentityCounter::restart()
{
    const std::lock_guard lock(m_mutex);
    m_next = m_seed;
    m_used = false;
}

std::optional<std::int64_t> IdentityCounter::last() const
{
    const std::lock_guard lock(m_mutex);
    return m_used ? std::optional(m_next - m_increment) : std::nullopt;
}

std::optional<std::size_t> Table::findColumn(std::string_view columnName) const
{
    const std::string folded = foldedName(columnName);
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (foldedName(columns[i].name) == folded)
            return i;
    return {};
}

std::optional<std::size_t> Table::findColumnById(int columnId) const
{
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].id == columnId)
            return i;
    return {};
}

const TableIndex *Table::findIndex(std::string_view indexName) const
{
    const std::string folded = foldedName(indexName);
    for (const TableIndex &index : indexes)
        if (foldedName(index.name) == folded)
            return &index;
    return nullptr;
}

const TableIndex *Table::primaryKey() const
{
    for (const TableIndex &index : indexes)
        if (index.role == TableIndex::Role::PrimaryKey)
            return &index;
    return nullptr;
}

std::vector<const ConstraintName *> Table::constraints() const
{
    std::vector<const ConstraintName *> names;
    for (const TableIndex &index : indexes)
        if (index.isKey())
            names.push_back(&index.constraint);
    for (const ForeignKey &key : foreignKeys)
        names.push_back(&key.constraint);
    for (const CheckConstraint &check : checks)
        names.push_back(&check.constraint);
    for (const TableColumn &column : columns)
        if (column.defaultValue)
            names.push_back(&column.defaultName);
    return names;
}

std::int64_t newObjectId()
{
    static std::atomic<std::int64_t> next{245575913};
    return next += 16;
}

Value nextRowVersion()
{
    static std::atomic<std::uint64_t> last{2000};
    const std::uint64_t number = ++last;
    Bytes bytes(8);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(number >> (56 - 8 * i));
    return bytes;
}

} // namespace SampleServer
