#pragma once

#include "Autocomplete/KNSourceColumns.h"

/// The conditions that join the last source of the query with those before it: by foreign keys, then by
/// columns of equal names and types.
QStringList KNJoinConditions(const KNSQLScope &scope, const KNSourceColumns &columns,
                             const KNCompletionCatalog *catalog,
                             const std::function<QString(const QString &)> &quotedName);

/// The tables, as schema and name, that a foreign key connects with a source of the query.
QList<QStringList> KNRelatedTables(const KNSQLScope &scope, const KNCompletionCatalog &catalog,
                                   const KNSourceColumns &columns);
