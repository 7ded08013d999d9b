#pragma once

#include "Database/DatabaseResultSet.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QMap>
#include <QVariantMap>

#include <functional>

/// Runs the catalog queries of the tree, scripts and helpers on pooled connections. Blocks on the server: any
/// thread except the UI thread.
namespace MSSQLCatalogReader {

using Values = QMap<QString, QString>; ///< by placeholder
using EachRow = std::function<void(const DatabaseResultSet &row)>;

/// A query text with its placeholders filled.
struct Query
{
    QString sql;
    const char *domain;        ///< error domain; null keeps the client's domain
    bool retryOnError = false; ///< repeats the query on a new connection if the pooled one is dead
};

/// Receives the result of one attempt; null if there is none. After a failure it contains the rows that were
/// received before.
using ReadRows = std::function<void(DatabaseResultSet *rows, const KNError &failure)>;

/// Returns the query or template with this title for the server's version, with its placeholders filled.
QString text(const VantorDBC &settings, const QString &title, const Values &values = {});

/// Returns the query of a list of tables, with the schema and the name at index 1 and 2: this one, or the
/// named query on SQL Server 2000, which has no view of tables.
QString tableList(const VantorDBC &settings, const QString &sql);

/// Runs a query and calls `readRows` once for each attempt. Returns the error without logging it.
KNError run(const VantorDBC &settings, const Query &query, const ReadRows &readRows);

/// Runs the query with this title and calls `eachRow` for every row, including those before a failure.
/// Returns the error in this domain, after logging it.
KNError read(const VantorDBC &settings, const QString &title, const Values &values, const char *domain,
             const EachRow &eachRow);

/// How a query's error is logged: in its domain, with these details and the query.
struct ErrorContext
{
    ErrorContext(const char *errorDomain, QVariantMap errorDetails = {})
        : domain(errorDomain)
        , details(std::move(errorDetails))
    {
    }
    const char *domain;
    QVariantMap details;
};

/// Logs a query's error and returns it in this domain.
KNError reported(const KNError &error, const ErrorContext &context, const QString &sql);

/// Returns the records of a table, view or procedure. `Record` names its query and reads its rows. Empty
/// after an error, which is logged: a partial list would look like a complete one.
template <typename Record>
QList<Record> records(const VantorDBC &settings, const QString &schema, const QString &object,
                      const ErrorContext &context, KNError *error)
{
    QList<Record> list;
    const QString sql = text(settings, QString::fromLatin1(Record::Title), Record::values(schema, object));
    *error = run(settings, {sql, context.domain}, [&](DatabaseResultSet *rows, const KNError &failure) {
        list = rows && !failure ? Record::listFrom(*rows) : QList<Record>();
    });
    if (*error)
        *error = reported(*error, context, sql);
    return list;
}

} // namespace MSSQLCatalogReader
