#include "Engine/Bind/Binder.h"
#include "Engine/Errors.h"
#include "Engine/Storage/RowProvider.h"
#include "Types/TypeTraits.h"

#include <sqlite3.h>

// STRING_SPLIT(text, separator)
namespace SampleServer {

using namespace Bound;

namespace {

class SplitCursor : public RowCursor
{
public:
    void start(std::span<sqlite3_value *> arguments, const Equality *) override
    {
        m_atEnd = sqlite3_value_type(arguments[0]) == SQLITE_NULL;
        m_text = textOf(arguments[0]);
        m_separator = textOf(arguments[1]);
        m_start = 0;
        m_end = std::min(m_text.find(m_separator), m_text.size());
    }
    void next() override
    {
        m_atEnd = m_end == m_text.size();
        m_start = m_end + m_separator.size();
        m_end = m_atEnd ? m_end : std::min(m_text.find(m_separator, m_start), m_text.size());
    }
    bool atEnd() const override { return m_atEnd; }
    void column(sqlite3_context *context, int) override
    {
        sqlite3_result_text(context, m_text.data() + m_start, static_cast<int>(m_end - m_start),
                            SQLITE_TRANSIENT);
    }

private:
    static std::string textOf(sqlite3_value *value)
    {
        const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
        return text ? std::string(text, static_cast<std::size_t>(sqlite3_value_bytes(value))) : std::string();
    }

    std::string m_text, m_separator;
    std::size_t m_start = 0, m_end = 0;
    bool m_atEnd = true;
};

class SplitRows : public RowProvider
{
public:
    std::unique_ptr<RowCursor> open(SqliteConnection &) const override
    {
        return std::make_unique<SplitCursor>();
    }
};

} // namespace

SourcePtr Binder::bindSplit(const Ast::TableSource &source, const Ast::FunctionTable &function, Scope &scope)
{
    if (function.arguments.size() != 2)
        throw Errors::argumentCount("string_split", 2);
    const auto text = bindValue(*function.arguments[0]), separator = bindValue(*function.arguments[1]);
    if (separator->type.length != 1)
        throw EngineError(214, 16, 11,
                          "Procedure expects parameter 'separator' of type 'nchar(1)/nvarchar(1)'.",
                          ErrorEffect::EndsBatch);
    const bool unicode = isUnicodeText(text->type.id) || isUnicodeText(separator->type.id);
    const SqlType type{unicode ? TypeId::NVarChar : TypeId::VarChar,
                       isText(text->type.id) ? text->type.length : 4000, 0, 0};
    ProvidedRows rows{std::make_shared<const SplitRows>(),
                      {converted(text, {TypeId::NVarChar, SqlType::Max, 0, 0}),
                       converted(separator, {TypeId::NVarChar, 1, 0, 0})}};
    ScopeSource entry;
    entry.name = source.alias.empty() ? function.name.object() : source.alias;
    const std::string alias = newAlias();
    ScopeColumn column;
    column.info.name = source.columns.empty() ? "value" : source.columns[0];
    column.info.type = type;
    column.source = alias;
    column.column = "c1";
    entry.columns.push_back(std::move(column));
    addSource(std::move(entry), scope);
    return std::make_shared<const Source>(Source{alias, std::move(rows)});
}

} // namespace SampleServer
