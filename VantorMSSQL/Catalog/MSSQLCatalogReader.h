#pragma once

#include "Database/DatabaseResultSet.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QMap>

#include <functional>

/// Reads the catalog: every query for the tree, scripts and helpers runs here, on pooled connections. Blocks
/// on the server, so any thread but the UI's.
namespace MSSQLCatalogReader {

using Values = QMap<QString, QString>; ///< by placeholder
using EachRow = std::function<void(const DatabaseResultSet &row)>;

/// A text that is ready to be sent.
struct Query
{
    QString sql;
    const char *domain;        ///< of its errors; null keeps those of the client
    bool retryOnError = false; ///< once more, on a fresh connection, when the lent one is dead
};

/// Takes the result of one attempt; null when there is none. After a failure it holds the rows that came
/// before it.
using ReadRows = std::function<void(DatabaseResultSet *rows, const KNError &failure)>;

/// The query or template with this title for the server, its placeholders filled.
QString text(const VantorDBC &settings, const QString &title, const Values &values = {});

/// Runs a query and passes its result, once for each attempt. An error is returned, not logged.
KNError run(const VantorDBC &settings, const Query &query, const ReadRows &readRows);

/// Runs the query with this title and passes every row, also those before a failure. An error is returned and
/// reported in this domain.
KNError read(const VantorDBC &settings, const QString &title, const Values &values, const char *domain,
             const EachRow &eachRow);

/// Reports an error of a query and returns it in this domain.
KNError reported(const KNError &error, const char *domain, const QString &sql);

/// The records of a table, view or procedure. `Record` names its query and reads its rows. Empty after an
/// error, which is reported: part of a list would pass for the whole.
template <typename Record>
QList<Record> records(const VantorDBC &settings, const QString &schema, const QString &object,
                      const char *domain, KNError *error)
{
    QList<Record> list;
    const QString sql = text(settings, QString::fromLatin1(Record::Title), Record::values(schema, object));
    *error = run(settings, {sql, domain}, [&](DatabaseResultSet *rows, const KNError &failure) {
        list = rows && !failure ? Record::listFrom(*rows) : QList<Record>();
    });
    if (*error)
        *error = reported(*error, domain, sql);
    return list;
}

} // namespace MSSQLCatalogReader
