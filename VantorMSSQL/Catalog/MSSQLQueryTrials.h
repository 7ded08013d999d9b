#pragma once

#include "QueryLoader/KNQueryTrial.h"

#include <QList>
#include <QStringList>

/// Which catalog queries only read, what fills them, and which server has no answer to them.
namespace MSSQLQueryTrials {

QList<KNQueryTrial> all();

/// Titles that SQL Server 2000 has nothing for.
QStringList notOnSQL2000();
/// Titles that read the agent's or several databases, which Azure has not.
QStringList notOnAzure();

} // namespace MSSQLQueryTrials
