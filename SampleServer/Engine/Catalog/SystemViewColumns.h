#pragma once

#include "Engine/Catalog/Table.h"
#include "Engine/Parse/AstQueries.h"

#include <functional>
#include <vector>

namespace SampleServer {

/// Gives the columns of another view of the catalog by its name.
using FindColumns = std::function<std::vector<TableColumn>(const Ast::ObjectName &name)>;

/// The columns of a view of the catalog by its text, without binding it.
std::vector<TableColumn> systemViewColumns(const Ast::Select &query, const FindColumns &columnsOf);

} // namespace SampleServer
