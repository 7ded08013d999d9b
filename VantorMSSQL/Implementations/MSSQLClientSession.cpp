#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"
#include "SQL/SQLMetadataTokenizer.h"

#include <QSet>

#include <sybdb.h>

namespace {

/// Azure SQL Database: a session stays in the database that it was opened in.
bool needsSessionOfItsOwn(const KNError &error)
{
    return error.localizedDescription().contains(QLatin1String("Msg 40508,"));
}

} // namespace

QString MSSQLClient::currentDatabase() const
{
    const KNSemaphoreLocker handle(m_dbProcSemaphore);
    return m_dbProc ? QString::fromUtf8(dbname(m_dbProc)) : QString();
}

bool MSSQLClient::changeDatabase(const QString &name, KNError *error)
{
    const QString quoted = QString(name).replace(u']', QLatin1String("]]"));
    executeNonQuery(KNFormat("USE [%@]", quoted), error);
    if (needsSessionOfItsOwn(*error)) {
        error->clear();
        disconnect();
        m_databaseConnectionDetails->setDatabase(name);
        return connect(error);
    }
    return !error->isSet();
}

QStringList MSSQLClient::databaseNames(KNError *error)
{
    const auto query =
        m_databaseConnectionDetails->queryLoader()->queryByTitle(QStringLiteral("General_ListDatabases"));
    QStringList names;
    const auto rows = executeQuery(query, error);
    while (!error->isSet() && rows && rows->next())
        names.append(rows->stringForColumnIndex(0));
    return names;
}

std::optional<bool> MSSQLClient::isInTransaction(KNError *error)
{
    const auto rows = executeQuery(QStringLiteral("SELECT @@TRANCOUNT"), error);
    if (error->isSet() || !rows || !rows->next())
        return std::nullopt;
    const KNValue depth = rows->numberForColumnIndex(0);
    return depth.isNumber() ? std::optional(depth.toBool()) : std::nullopt;
}

bool MSSQLClient::mayChangeTransaction(const QString &sql) const
{
    static const QSet<QString> words = {
        QStringLiteral("TRAN"),     QStringLiteral("TRANSACTION"), QStringLiteral("COMMIT"),
        QStringLiteral("ROLLBACK"), QStringLiteral("EXEC"),        QStringLiteral("IMPLICIT_TRANSACTIONS"),
        QStringLiteral("EXECUTE"),
    };
    SQLMetadataTokenizer tokenizer(sql, MSSQLDatabaseConnectionDetails::createPreParserOptions());
    for (SQLToken token{}; tokenizer.next(&token);) {
        if (token.kind == SQLTokenKind::Word && words.contains(token.text.toString().toUpper()))
            return true;
    }
    return false;
}
