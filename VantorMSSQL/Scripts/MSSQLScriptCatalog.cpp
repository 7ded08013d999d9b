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
    if (!failure)
        return failure;
    const KNError error(QString::fromLatin1(domain), failure.code(), failure.localizedDescription(),
                        failure.userInfo());
    MSSQLClient::reportError(error, {{QStringLiteral("Query"), sql}});
    return error;
}

} // namespace MSSQLScriptCatalog
