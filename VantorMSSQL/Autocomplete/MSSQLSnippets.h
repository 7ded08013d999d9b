#pragma once

#include "SQL/Snippets/KNSnippet.h"

#include <QList>

namespace MSSQLSnippets {

/// The snippets of T-SQL from the connector's resources.
QList<KNSnippet> read();

} // namespace MSSQLSnippets
