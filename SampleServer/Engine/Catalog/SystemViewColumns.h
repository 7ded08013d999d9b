#pragma once

#include "Engine/Catalog/Table.h"
#include "Engine/Parse/AstQueries.h"

#include <functional>
#include <vector>

namespace SampleServer {

/// Returns the columns of another catalog view by name.
using FindColumns = std::function<std::vector<TableColumn>(const Ast::ObjectName &name)>;

/// Derives the columns of a catalog view from its text, without binding it.
std::vector<TableColumn> systemViewColumns(const Ast::Select &query, const FindColumns &columnsOf);

} // namespace SampleServer
