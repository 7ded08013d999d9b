#include "Scripts/MSSQLScriptCatalog.h"

#include "Database/VantorDatabaseConnectionPool.h"
#include "Implementations/MSSQLClient.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

namespace {

QString queryText(const VantorDBC &details, const QString &title, const QMap<QString, QString> &values)
{
    return KNQueryTemplate::filled(details.queryLoader()->queryByTitle(title), values);
}

KNError run(const VantorDBC &details, const QString &sql, const MSSQLScriptCatalog::EachRow &eachRow)
{
    KNError error;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            const auto rows = client.executeQuery(sql, failure);
            while (rows && rows->next())
                eachRow(*rows);
        },
        details, &error);
    return error;
}

} // namespace

namespace MSSQLScriptCatalog {

KNError readRows(const VantorDBC &details, const QString &title, const QMap<QString, QString> &values,
                 const EachRow &eachRow)
{
    return run(details, queryText(details, title, values), eachRow);
}

KNError readRowsAndReport(const VantorDBC &details, const QString &title,
                          const QMap<QString, QString> &values, const char *domain, const EachRow &eachRow)
{
    const QString sql = queryText(details, title, values);
    const KNError failure = run(details, sql, eachRow);
    return failure ? reported(failure, domain, sql) : failure;
}

KNError reported(const KNError &error, const char *domain, const QString &sql)
{
    const KNError own = error.inDomain(QString::fromLatin1(domain));
    MSSQLClient::reportError(own, {{QStringLiteral("Query"), sql}});
    return own;
}

} // namespace MSSQLScriptCatalog
