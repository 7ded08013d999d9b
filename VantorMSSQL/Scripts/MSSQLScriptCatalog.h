#pragma once

#include "Database/DatabaseResultSet.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QMap>

#include <functional>

/// How generators run catalog queries.
namespace MSSQLScriptCatalog {

using EachRow = std::function<void(const DatabaseResultSet &row)>;

/// Runs the catalog query with this title, its placeholders filled, on a pooled connection and calls
/// `eachRow` with every row. The pool's error, if any, comes back as it is. Blocks on the server.
KNError readRows(const VantorDBC &details, const QString &title, const QMap<QString, QString> &values,
                 const EachRow &eachRow);

/// The same; an error is reported, and comes back, in this domain.
KNError readRowsAndReport(const VantorDBC &details, const QString &title,
                          const QMap<QString, QString> &values, const char *domain, const EachRow &eachRow);

/// Reports an error of this query, in this domain, and gives it back so.
KNError reported(const KNError &error, const char *domain, const QString &sql);

} // namespace MSSQLScriptCatalog
