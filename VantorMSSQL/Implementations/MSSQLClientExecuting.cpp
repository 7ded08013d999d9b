#include "Foundation/KNAssert.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLDatabaseResultSet.h"
#include "Implementations/MSSQLHandleScope.h"
#include "Implementations/MSSQLMessageList.h"
#include "Implementations/MSSQLQueryTimer.h"

#include <sybdb.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

KNQueryDetails wholeText(const QString &sql)
{
    return {sql, {0, sql.size()}};
}

/// The messages that were collected meanwhile, with their lines in the whole text.
QList<DatabaseMessage> takeMessages(const KNQueryDetails &details)
{
    QList<DatabaseMessage> messages = MSSQLMessageList::sharedInstance().takeMessages();
    for (DatabaseMessage &message : messages)
        message.calculatedLineNumber = message.line + details.lineNumberOffset;
    return messages;
}

KNDisplayMessage summaryOf(const KNDatabaseResultSet &resultSet, bool wasCancelled)
{
    QString summary = wasCancelled ? QStringLiteral("Query was cancelled.")
                                   : QStringLiteral("Command completed successfully.");
    const qsizetype rows = resultSet.rows().rowCount();
    if (!resultSet.columnNames().isEmpty())
        summary += KNFormat(" (%ld result%@).", rows, rows == 1 ? "" : "s");
    else if (resultSet.numberOfRowsAffected() != KNDatabaseResultSet::UnknownCount)
        summary += KNFormat(" (%ld rows affected).", resultSet.numberOfRowsAffected());
    return {summary, wasCancelled ? KNDisplayMessage::Colour::Red : KNDisplayMessage::Colour::Black};
}

QString withFullStop(const QString &text)
{
    const QString trimmed = text.trimmed();
    return trimmed.endsWith(QLatin1Char('.')) ? trimmed : trimmed + QLatin1Char('.');
}

} // namespace

bool MSSQLClient::executeQueryDetails(const QList<KNQueryDetails> &queries, KNResultSetHolder &withResultSet,
                                      const Progress &, KNError *error)
{
    KNAssert(error, "Error must be specified.", "Implementations/MSSQLClient");
    const MSSQLRunScope run(m_cancellation);
    error->clear();
    const QString federation = m_databaseConnectionDetails->federationStatement();
    if (!federation.isEmpty())
        executeQueryInternal(federation, withResultSet, error);
    KNLogHelper::sharedInstance()->logMessage("executeQueryDetails (%ld queries).", queries.size());
    for (const KNQueryDetails &details : queries) {
        for (quint32 times = 0; times < details.repeatCount; ++times) {
            if (error->isSet() || wasCancelled())
                return true;
            executeQueryDetails(details, withResultSet, error);
        }
    }
    return true;
}

bool MSSQLClient::executeQueryInternal(const QString &sql, KNResultSetHolder &withResultSet, KNError *error)
{
    return executeQueryDetails(wholeText(sql), withResultSet, error);
}

std::unique_ptr<DatabaseResultSet> MSSQLClient::executeQuery(const QString &sql, KNError *error)
{
    KNResultSetHolder holder;
    executeQueryInternal(sql, holder, error);
    const auto resultSets = holder.resultSets();
    for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
        if (!resultSet->columnNames().isEmpty())
            return std::make_unique<MSSQLDatabaseResultSet>(resultSet);
    }
    return nullptr;
}

bool MSSQLClient::executeNonQuery(const QString &sql, KNError *error)
{
    KNResultSetHolder holder;
    executeQueryInternal(sql, holder, error);
    KNAssert(holder.resultSets().size() <= 1, "executeQuery can only return a single resultset.",
             "Implementations/MSSQLClient");
    return true;
}

bool MSSQLClient::testCommand(const QString &sql)
{
    KNResultSetHolder holder;
    KNError error;
    const bool executed = executeQueryInternal(sql, holder, &error);
    if (!executed)
        return false;
    const auto resultSets = holder.resultSets();
    for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
        const qint64 count = resultSet->numberOfRowsAffected();
        if (resultSet->columnNames().isEmpty())
            KNLogHelper::sharedInstance()->logMessage(
                "Command completed successfully. (%@ rows affected). (%@).", QString::number(count),
                count < 0 ? "NO" : "YES");
        else
            KNLogHelper::sharedInstance()->logMessage("Command completed successfully. (%ld results).",
                                                      resultSet->rows().rowCount());
    }
    return true;
}

bool MSSQLClient::executeQueryDetails(const KNQueryDetails &details, KNResultSetHolder &withResultSet,
                                      KNError *error)
{
    const MSSQLRunScope run(m_cancellation);
    const int timeout = m_databaseConnectionDetails->queryTimeout();
    MSSQLQueryTimer timer(*this, std::chrono::seconds(timeout));
    const bool complete = runBatch(details, withResultSet, error);
    if (!timer.stop())
        return complete;
    *error =
        KNError(QStringLiteral("SQLClient"), 0,
                KNFormat("The batch took longer than the %d seconds that this connection allows, and was "
                         "stopped.",
                         timeout));
    return false;
}

bool MSSQLClient::runBatch(const KNQueryDetails &details, KNResultSetHolder &withResultSet, KNError *error)
{
    MSSQLMessageList::sharedInstance().clearMessage();
    if (details.targetQuery.trimmed().isEmpty())
        return true;
    switch (sendBatch(details.targetQuery)) {
    case Sent::NotSent:
        return false;
    case Sent::Failed:
        return failBatch(details, withResultSet, error);
    case Sent::Executed:
        break;
    }
    const bool complete = readResults(details, withResultSet, error);
    MSSQLMessageList::sharedInstance().clearMessage();
    stopBatch();
    return complete;
}

/// Sends the text and waits for the first answer: the two halves of dbsqlexec(), with the wait between them
/// outside db-lib and without the handle, so that a cancel can have it.
MSSQLClient::Sent MSSQLClient::sendBatch(const QString &sql)
{
    const auto failed = [](RETCODE code) {
        KNLogHelper::sharedInstance()->logMessage("Query failure, retcode was: %d", code);
        return Sent::Failed;
    };
    int descriptor = -1;
    int packetSize = 0;
    {
        const MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
        if (isLost())
            return Sent::Failed;
        if (dbcmd(m_dbProc, sql.toUtf8().constData()) != SUCCEED)
            return Sent::NotSent;
        if (const RETCODE code = dbsqlsend(m_dbProc); code != SUCCEED)
            return failed(code);
        // A descriptor of this thread's own: a cancel that loses its patience closes db-lib's.
        descriptor = fcntl(DBIORDESC(m_dbProc), F_DUPFD_CLOEXEC, 0);
        if (descriptor < 0)
            return failed(FAIL);
        packetSize = dbgetpacket(m_dbProc);
    }
    m_cancellation.waitForAnswer(descriptor, packetSize);
    close(descriptor);

    const MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
    const RETCODE code = m_cancellation.isRequested() ? FAIL : dbsqlok(m_dbProc);
    return code == SUCCEED ? Sent::Executed : failed(code);
}

/// Whether there is no connection, or none that works. The handle must be held.
bool MSSQLClient::isLost() const
{
    return !m_dbProc || dbdead(m_dbProc);
}

bool MSSQLClient::failBatch(const KNQueryDetails &details, KNResultSetHolder &holder, KNError *error)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    stopBatch();
    const auto resultSet = std::make_shared<KNDatabaseResultSet>(details.targetQuery);
    holder.append(resultSet);

    quint64 lastLine = 0;
    *error = batchError(details, &lastLine);
    int remaining = 0;
    while (nextResult())
        ++remaining;
    const QString description = error->localizedDescription();
    if (remaining > 0) {
        log->logMessage("Had count. Didn't expect count.");
        log->logMessage("Error executing command: %@. Still had %ld results.", description, remaining);
    } else {
        log->logMessage("Error executing command: %@.", description);
    }

    resultSet->setServerMessages(takeMessages(details));
    resultSet->setMessages({{withFullStop(description), KNDisplayMessage::Colour::Red}});
    resultSet->setCalculatedLineNumber(lastLine);
    resultSet->setQueryTextRange(details.queryRange);
    resultSet->setFinished();
    return false;
}

/// Reads everything that the batch gives. False, with an error, when the connection was lost on the way.
bool MSSQLClient::readResults(const KNQueryDetails &details, KNResultSetHolder &holder, KNError *error)
{
    KNDatabaseResultSetPtr previous;
    bool previousHadCompute = false;
    while (nextResult()) {
        if (previous && !MSSQLMessageList::sharedInstance().isEmpty())
            previous->setServerMessages(takeMessages(details));
        const auto resultSet = std::make_shared<KNDatabaseResultSet>(details.targetQuery);
        holder.append(resultSet);
        readColumns(*resultSet);
        const KNDatabaseResultSetPtr compute = readRows(resultSet, holder);
        resultSet->setMessages({summaryOf(*resultSet, wasCancelled())});
        resultSet->setFinished();
        if (previousHadCompute && resultSet->numberOfRowsAffected() == KNDatabaseResultSet::UnknownCount &&
            resultSet->rows().rowCount() == 0)
            holder.remove(resultSet);
        else
            previous = resultSet;
        if (compute)
            compute->setFinished();
        previousHadCompute = compute != nullptr;
    }

    const bool lost = !isConnected();
    quint64 lastLine = 0;
    if (lost)
        *error = batchError(details, &lastLine);
    if (previous) {
        previous->setServerMessages(previous->serverMessages() + takeMessages(details));
        if (lost)
            previous->setMessages(
                {{withFullStop(error->localizedDescription()), KNDisplayMessage::Colour::Red}});
    }
    return !lost;
}

/// Goes to the next result; false when there is none, or when the run is to stop. A statement that failed in
/// the middle of a batch has no result, but the ones after it have.
bool MSSQLClient::nextResult()
{
    for (;;) {
        MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
        if (!m_dbProc || m_cancellation.isRequested())
            return false;
        const RETCODE code = dbresults(m_dbProc);
        if (code == SUCCEED)
            return !m_cancellation.isRequested();
        if (code == NO_MORE_RESULTS || dbdead(m_dbProc))
            return false;
    }
}

/// Ends the batch, so that the next one never meets what this one left. A cancelled run is cancelled at the
/// server here, on the thread that ran it.
void MSSQLClient::stopBatch()
{
    const MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
    if (m_cancellation.isRequested())
        stopAtServer();
    else if (!isLost())
        dbcanquery(m_dbProc);
}
