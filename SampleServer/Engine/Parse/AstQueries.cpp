#include "Engine/Parse/AstQueries.h"

namespace SampleServer::Ast {

Select selectAll(const ObjectName &table)
{
    Select select;
    select.query = std::make_unique<Query>();
    SelectItem star;
    star.star = ObjectName();
    select.query->specification.items.push_back(std::move(star));
    auto source = std::make_unique<TableSource>();
    source->node = NamedTable{table, false};
    select.query->specification.from.push_back(std::move(source));
    return select;
}

} // namespace SampleServer::Ast
