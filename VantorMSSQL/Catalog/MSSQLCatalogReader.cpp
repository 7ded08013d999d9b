#include "Catalog/MSSQLCatalogReader.h"

#include "Catalog/MSSQLVersionHelper.h"
#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Implementations/MSSQLErrorReport.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

namespace MSSQLCatalogReader {

QString text(const VantorDBC &settings, const QString &title, const Values &values)
{
    return KNQueryTemplate::filled(settings.queryLoader()->queryByTitle(title), values);
}

QString tableList(const VantorDBC &settings, const QString &sql)
{
    return MSSQLVersionHelper::sharedInstance()->isSQL2000(settings)
               ? text(settings, QStringLiteral("DatabaseTree_ListTables"))
               : sql;
}

KNError run(const VantorDBC &settings, const Query &query, const ReadRows &readRows)
{
    KNError error;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            const auto rows = client.executeQuery(query.sql, failure);
            readRows(rows.get(), *failure);
        },
        settings, &error, query.retryOnError);
    return error && query.domain ? error.inDomain(QString::fromLatin1(query.domain)) : error;
}

KNError read(const VantorDBC &settings, const QString &title, const Values &values, const char *domain,
             const EachRow &eachRow)
{
    const QString sql = text(settings, title, values);
    const KNError error = run(settings, {sql, nullptr}, [&](DatabaseResultSet *rows, const KNError &) {
        while (rows && rows->next())
            eachRow(*rows);
    });
    return error ? reported(error, domain, sql) : error;
}

KNError reported(const KNError &error, const ErrorContext &context, const QString &sql)
{
    const KNError own = error.inDomain(QString::fromLatin1(context.domain));
    QVariantMap details = context.details;
    details.insert(QStringLiteral("Query"), sql);
    MSSQLErrorReport::reportError(own, details);
    return own;
}

} // namespace MSSQLCatalogReader
