#include "Engine/Catalog/SystemViewColumns.h"
#include "Engine/Bind/TypeRules.h"
#include "Types/Collation.h"

#include <algorithm>

namespace SampleServer {

namespace {

struct Source
{
    std::string name; ///< alias, or the name of what is read
    std::vector<TableColumn> columns;
};

class Reader
{
public:
    explicit Reader(const FindColumns &columnsOf)
        : m_columnsOf(columnsOf)
    {
    }

    std::vector<TableColumn> read(const Ast::Select &select)
    {
        const Ast::Query *query = select.query.get();
        while (query->left) // the first query of a UNION names the columns
            query = query->left.get();
        Reader own(m_columnsOf);
        for (const Ast::TableSourcePtr &source : query->specification.from)
            own.addSource(*source);
        for (const Ast::SelectItem &item : query->specification.items)
            own.addItem(item);
        for (std::size_t i = 0; i < own.m_result.size(); ++i)
            own.m_result[i].id = static_cast<int>(i) + 1;
        return std::move(own.m_result);
    }

private:
    void addSource(const Ast::TableSource &source)
    {
        Source entry{source.alias, {}};
        if (const auto *join = std::get_if<Ast::Join>(&source.node)) {
            addSource(*join->left);
            return addSource(*join->right);
        }
        if (const auto *named = std::get_if<Ast::NamedTable>(&source.node))
            entry.columns = m_columnsOf(named->name);
        else if (const auto *derived = std::get_if<Ast::DerivedTable>(&source.node))
            entry.columns = read(*derived->query);
        else if (const auto *values = std::get_if<Ast::ValuesTable>(&source.node))
            for (const Ast::ExpressionPtr &value : values->rows.at(0)) {
                entry.columns.emplace_back();
                entry.columns.back().type = typeOf(*value);
            }
        for (std::size_t i = 0; i < std::min(source.columns.size(), entry.columns.size()); ++i)
            entry.columns[i].name = source.columns[i];
        m_sources.push_back(std::move(entry));
    }

    void addItem(const Ast::SelectItem &item)
    {
        if (item.star) {
            for (const Source &source : m_sources)
                if (item.star->parts.empty() || source.name == item.star->object())
                    m_result.insert(m_result.end(), source.columns.begin(), source.columns.end());
            return;
        }
        const auto *column = std::get_if<Ast::ColumnReference>(&item.expression->node);
        TableColumn result;
        if (const TableColumn *known = column ? find(column->name) : nullptr)
            result = *known;
        else
            result.type = typeOf(*item.expression);
        if (!item.alias.empty())
            result.name = item.alias;
        m_result.push_back(std::move(result));
    }

    const TableColumn *find(const Ast::ObjectName &name) const
    {
        for (const Source &source : m_sources)
            if (name.parts.size() == 1 || source.name == name.qualifier(1))
                for (const TableColumn &column : source.columns)
                    if (foldedName(column.name) == foldedName(name.object()))
                        return &column;
        return nullptr;
    }

    /// Only as needed for the catalog views: anything other than a CAST, column or literal is a number.
    SqlType typeOf(const Ast::Expression &expression) const
    {
        if (const auto *cast = std::get_if<Ast::Cast>(&expression.node))
            return resolveType(cast->type, TypePlace::Declaration);
        if (const auto *literal = std::get_if<Ast::Literal>(&expression.node))
            return literal->type;
        if (const auto *column = std::get_if<Ast::ColumnReference>(&expression.node))
            if (const TableColumn *known = find(column->name))
                return known->type;
        if (const auto *arithmetic = std::get_if<Ast::Arithmetic>(&expression.node))
            return typeOf(*arithmetic->left);
        if (const auto *choice = std::get_if<Ast::Case>(&expression.node))
            return typeOf(*choice->branches.at(0).then);
        return {TypeId::Int};
    }

    const FindColumns &m_columnsOf;
    std::vector<Source> m_sources;
    std::vector<TableColumn> m_result;
};

} // namespace

std::vector<TableColumn> systemViewColumns(const Ast::Select &query, const FindColumns &columnsOf)
{
    return Reader(columnsOf).read(query);
}

} // namespace SampleServer
