#include "Catalog/MSSQLCatalogReader.h"
#include "Catalog/MSSQLVersionHelper.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"
#include "SQL/SQLMetadataTokenizer.h"

#include <QSet>

#include <sybdb.h>

namespace {

/// Azure SQL Database: a session cannot change its database.
bool needsSessionOfItsOwn(const KNError &error)
{
    return error.localizedDescription().contains(QLatin1String("Msg 40508,"));
}

/// The words after SET that change the session (T-SQL, "SET statements").
const QSet<QString> &sessionOptions()
{
    static const QSet<QString> options = [] {
        const char *const names =
            "ANSI_DEFAULTS ANSI_NULLS ANSI_NULL_DFLT_OFF ANSI_NULL_DFLT_ON ANSI_PADDING ANSI_WARNINGS "
            "ARITHABORT ARITHIGNORE CONCAT_NULL_YIELDS_NULL CONTEXT_INFO CURSOR_CLOSE_ON_COMMIT DATEFIRST "
            "DATEFORMAT DEADLOCK_PRIORITY FIPS_FLAGGER FMTONLY FORCEPLAN IDENTITY_INSERT "
            "IMPLICIT_TRANSACTIONS LANGUAGE LOCK_TIMEOUT NOCOUNT NOEXEC NUMERIC_ROUNDABORT OFFSETS PARSEONLY "
            "QUERY_GOVERNOR_COST_LIMIT QUOTED_IDENTIFIER REMOTE_PROC_TRANSACTIONS "
            "RESULT_SET_CACHING ROWCOUNT SHOWPLAN_ALL SHOWPLAN_TEXT SHOWPLAN_XML STATISTICS TEXTSIZE "
            "TRANSACTION XACT_ABORT";
        const QStringList list = QString::fromLatin1(names).split(QLatin1Char(' '));
        return QSet<QString>(list.begin(), list.end());
    }();
    return options;
}

/// Those that the query Session_Options restores. One that follows another after a comma is not among them.
const QSet<QString> &reportedOptions()
{
    static const QSet<QString> options = [] {
        const char *const names =
            "ANSI_NULLS ANSI_NULL_DFLT_OFF ANSI_NULL_DFLT_ON ANSI_PADDING ANSI_WARNINGS ARITHABORT "
            "ARITHIGNORE "
            "CONCAT_NULL_YIELDS_NULL CURSOR_CLOSE_ON_COMMIT DATEFIRST DATEFORMAT DEADLOCK_PRIORITY "
            "LANGUAGE LOCK_TIMEOUT NOCOUNT NUMERIC_ROUNDABORT QUOTED_IDENTIFIER TEXTSIZE "
            "TRANSACTION XACT_ABORT";
        const QStringList list = QString::fromLatin1(names).split(QLatin1Char(' '));
        return QSet<QString>(list.begin(), list.end());
    }();
    return options;
}

/// A name without its brackets or quotation marks.
QStringView bareName(QStringView token)
{
    const bool isQuoted = token.startsWith(QLatin1Char('[')) || token.startsWith(QLatin1Char('"'));
    return isQuoted ? token.mid(1) : token;
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
        KNError ignored;
        if (isInTransaction(&ignored).value_or(true)) {
            *error = KNError(QStringLiteral("SQLClient"), 0,
                             QStringLiteral("This server needs a new session for another database, and this "
                                            "one has a transaction open. Commit it or roll it back first."));
            return false;
        }
        error->clear();
        disconnect();
        m_databaseConnectionDetails->setDatabase(name);
        return connect(error);
    }
    return !error->isSet();
}

QStringList MSSQLClient::databaseNames(KNError *error)
{
    MSSQLVersionHelper::sharedInstance()->learnFrom(*this, *m_databaseConnectionDetails);
    QStringList names;
    const auto rows = executeQuery(
        MSSQLCatalogReader::text(*m_databaseConnectionDetails, QStringLiteral("General_ListDatabases")),
        error);
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
        QStringLiteral("TRAN"),     QStringLiteral("TRANSACTION"),   QStringLiteral("COMMIT"),
        QStringLiteral("ROLLBACK"), QStringLiteral("EXEC"),          QStringLiteral("IMPLICIT_TRANSACTIONS"),
        QStringLiteral("EXECUTE"),  QStringLiteral("ANSI_DEFAULTS"),
    };
    SQLMetadataTokenizer tokenizer(sql, MSSQLDatabaseConnectionDetails::createPreParserOptions());
    for (SQLToken token{}; tokenizer.next(&token);) {
        if (token.kind == SQLTokenKind::Word && words.contains(token.text.toString().toUpper()))
            return true;
    }
    return false;
}

QString MSSQLClient::optionsBatch(KNError *error)
{
    const auto rows = executeQuery(
        MSSQLCatalogReader::text(*m_databaseConnectionDetails, QStringLiteral("Session_Options")), error);
    return rows && !error->isSet() && rows->next() ? rows->stringForColumnIndex(0) : QString();
}

VantorSessionState MSSQLClient::sessionStateAfter(const QString &sql) const
{
    VantorSessionState state;
    state.hasTransaction = mayChangeTransaction(sql);
    QString last;          // the previous token, in upper case
    bool isOption = false; // "SET option" was read: "SET column =" is part of an UPDATE
    SQLMetadataTokenizer tokenizer(sql, MSSQLDatabaseConnectionDetails::createPreParserOptions());
    for (SQLToken token{}; tokenizer.next(&token);) {
        if (token.kind == SQLTokenKind::Whitespace || token.kind == SQLTokenKind::LineComment ||
            token.kind == SQLTokenKind::BlockComment)
            continue;
        // Strings may be long, and are not needed here.
        const QString text = token.kind == SQLTokenKind::String ? QString() : token.text.toString().toUpper();
        const bool wasSet = isOption && text != QLatin1String("=");
        state.hasOptions |= wasSet;
        state.hasUnknownOptions |= wasSet && !reportedOptions().contains(last);
        // SET ANSI_DEFAULTS ON includes the other one; both may follow other options after a comma.
        state.beginsTransactions |=
            text == QLatin1String("IMPLICIT_TRANSACTIONS") || text == QLatin1String("ANSI_DEFAULTS");
        isOption = last == QLatin1String("SET") && sessionOptions().contains(text);
        const bool isExecuteAs = text == QLatin1String("AS") &&
                                 (last == QLatin1String("EXECUTE") || last == QLatin1String("EXEC"));
        const bool hasContext = isExecuteAs || text == QLatin1String("SP_SET_SESSION_CONTEXT");
        state.hasOptions |= hasContext;
        state.hasUnknownOptions |= hasContext;
        const bool mayBeNew = last == QLatin1String("TABLE") || last == QLatin1String("INTO");
        state.hasTemporaryTables |= mayBeNew && bareName(text).startsWith(QLatin1Char('#'));
        last = text;
    }
    return state;
}
