#pragma once

#include "QueryLoader/KNQueryTrial.h"

#include <QList>
#include <QStringList>

/// Describes the read-only catalog queries, the objects that fill their placeholders, and the servers that do
/// not support them.
namespace MSSQLQueryTrials {

QList<KNQueryTrial> all();

/// Titles without a text for SQL Server 2000.
QStringList notOnSQL2000();
/// Titles that read the agent or several databases, which Azure does not support.
QStringList notOnAzure();

} // namespace MSSQLQueryTrials
