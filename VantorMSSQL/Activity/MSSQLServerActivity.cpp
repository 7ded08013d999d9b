#include "Activity/MSSQLServerActivity.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"

#include <QSet>

namespace {

constexpr auto Title = "List_Sessions";
constexpr auto Domain = "mssql.activity";
constexpr int Refusal = 13; // column

KNActivitySession sessionFrom(const DatabaseResultSet &row)
{
    const auto number = [&row](int column) { return row.objectForColumnIndex(column).toInt64(); };
    const auto text = [&row](int column) { return row.stringForColumnIndex(column); };
    return {.id = static_cast<int>(number(0)),
            .blockedBy = static_cast<int>(number(1)),
            .status = text(2),
            .login = text(3),
            .host = text(4),
            .program = text(5),
            .database = text(6),
            .command = text(7),
            .waitType = text(8),
            .milliseconds = number(9),
            .openTransactions = static_cast<int>(number(10)),
            .statement = text(11).trimmed(),
            .isOwn = row.objectForColumnIndex(12).toBool()};
}

} // namespace

MSSQLServerActivity::MSSQLServerActivity(std::shared_ptr<const VantorDBC> details)
    : m_details(std::move(details))
{
}

QString MSSQLServerActivity::remarkOn(const QString &refusal)
{
    return KNFormat(
        tr("Only your own session is shown. To see the others, the login needs the permission "
           "VIEW SERVER STATE (from SQL Server 2022 on VIEW SERVER PERFORMANCE STATE, on Azure SQL "
           "Database VIEW DATABASE STATE). The server says: %@"),
        refusal);
}

/// A session with several requests at a time has several rows: the first one counts.
KNActivitySnapshot MSSQLServerActivity::read(KNError *error) const
{
    KNActivitySnapshot snapshot;
    QSet<int> ids;
    *error = MSSQLCatalogReader::read(
        *m_details, QString::fromLatin1(Title), {}, Domain, [&](const DatabaseResultSet &row) {
            if (const QString refusal = row.stringForColumnIndex(Refusal); !refusal.isNull())
                snapshot.remark = remarkOn(refusal);
            const KNActivitySession session = sessionFrom(row);
            if (ids.contains(session.id))
                return;
            ids.insert(session.id);
            snapshot.sessions.append(session);
        });
    if (*error)
        return {};
    if (snapshot.sessions.size() >= MostSessions && snapshot.remark.isNull())
        snapshot.remark = KNFormat(tr("Only %d sessions are shown."), MostSessions);
    return snapshot;
}

void MSSQLServerActivity::kill(int session, KNError *error) const
{
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [session](VantorDatabaseClient &client, KNError *failure) {
            client.executeNonQuery(KNFormat("KILL %d", session), failure);
        },
        *m_details, error);
}
