#pragma once

#include "Database/VantorDBC.h"
#include "Desktop/Query/QueryRun.h"

class QWidget;

/// Asks before risky statements run on a production connection; the connector recognises them. On the UI
/// thread.
namespace RiskyRunQuestion {

/// Calls `run` if the request may run: at once unless the connection is a production one; otherwise after a
/// search in the background, and the user's confirmation if it finds something. Not after `window` is
/// destroyed.
void ask(QWidget *window, const QueryRequest &request, const VantorDBC &details, std::function<void()> run);

} // namespace RiskyRunQuestion
