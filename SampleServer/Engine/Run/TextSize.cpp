#include "Engine/Run/TextSize.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

TextSizeLimit::TextSizeLimit(const Bound::Query &query, std::int32_t bytes)
    : m_bytes(static_cast<std::size_t>(bytes))
{
    if (bytes == 0x7FFFFFFF)
        return;
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        const SqlType &type = query.columns[i].info.type;
        if (isLegacyLob(type.id) || type.length == SqlType::Max)
            m_long.emplace_back(i, isUnicodeText(type.id));
    }
}

bool TextSizeLimit::exceeds(std::size_t column, const Value &value) const
{
    const auto &[place, unicode] = m_long[column];
    if (const auto *text =
            std::get_if<std::string>(&value)) // UTF-8 has at least as many bytes as UTF-16 has units
        return text->size() * (unicode ? 2 : 1) > m_bytes;
    const auto *bytes = std::get_if<Bytes>(&value);
    return bytes && bytes->size() > m_bytes;
}

std::span<const Value> TextSizeLimit::apply(std::span<const Value> row) const
{
    bool any = false;
    for (std::size_t i = 0; i < m_long.size(); ++i)
        any = any || exceeds(i, row[m_long[i].first]);
    if (!any)
        return row;
    m_cut.assign(row.begin(), row.end());
    for (const auto &[place, unicode] : m_long) {
        if (auto *text = std::get_if<std::string>(&m_cut[place]))
            *text = utf16Substring(*text, 0, unicode ? m_bytes / 2 : m_bytes);
        else if (auto *bytes = std::get_if<Bytes>(&m_cut[place]))
            bytes->resize(std::min(bytes->size(), m_bytes));
    }
    return m_cut;
}

} // namespace SampleServer
