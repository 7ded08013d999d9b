#include "Engine/Catalog/CatalogTable.h"
#include "Engine/Storage/SqliteCodec.h"
#include "Types/Collation.h"
#include "Types/Text.h"

namespace SampleServer {

namespace {

std::string keyOf(std::int64_t number)
{
    return 'i' + std::to_string(number);
}

std::string keyOf(std::string_view text)
{
    return 't' + foldedName(trimmedRight(text));
}

class IndexedCursor : public RowCursor
{
public:
    explicit IndexedCursor(const IndexedRows &rows)
        : m_rows(rows)
    {
    }

    void start(std::span<sqlite3_value *>, const Equality *equality) override
    {
        m_found =
            equality ? m_rows.find(static_cast<std::size_t>(equality->column), equality->value) : nullptr;
        m_at = 0;
    }
    void next() override { ++m_at; }
    bool atEnd() const override { return m_at >= (m_found ? m_found->size() : m_rows.size()); }
    void column(sqlite3_context *context, int index) override
    {
        const auto place = static_cast<std::size_t>(index);
        const std::size_t row = m_found ? (*m_found)[m_at] : m_at;
        returnValue(context, m_rows.value(row, place), m_rows.type(place));
    }

private:
    const IndexedRows &m_rows;
    const std::vector<std::size_t> *m_found = nullptr; ///< null: all rows
    std::size_t m_at = 0;
};

} // namespace

std::unique_ptr<RowCursor> IndexedRows::open(SqliteConnection &) const
{
    return std::make_unique<IndexedCursor>(*this);
}

const std::vector<std::size_t> *IndexedRows::find(std::size_t column, sqlite3_value *wanted) const
{
    static const std::vector<std::size_t> none;
    std::string key;
    switch (sqlite3_value_type(wanted)) {
    case SQLITE_NULL:
        return &none;
    case SQLITE_INTEGER:
        key = keyOf(sqlite3_value_int64(wanted));
        break;
    case SQLITE_TEXT:
        key = keyOf(std::string_view(reinterpret_cast<const char *>(sqlite3_value_text(wanted)),
                                     static_cast<std::size_t>(sqlite3_value_bytes(wanted))));
        break;
    default:
        return nullptr;
    }
    const auto [place, isNew] = m_indexes.try_emplace(column);
    Index &index = place->second;
    for (std::size_t row = 0; isNew && row < size(); ++row) {
        const Value item = value(row, column);
        if (const auto *number = std::get_if<std::int64_t>(&item))
            index[keyOf(*number)].push_back(row);
        else if (const auto *text = std::get_if<std::string>(&item))
            index[keyOf(std::string_view(*text))].push_back(row);
    }
    const auto found = index.find(key);
    return found == index.end() ? &none : &found->second;
}

} // namespace SampleServer
