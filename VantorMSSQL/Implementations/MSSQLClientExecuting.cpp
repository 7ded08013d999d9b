#include "Foundation/KNAssert.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLDatabaseResultSet.h"
#include "Implementations/MSSQLErrorRange.h"
#include "Implementations/MSSQLHandleScope.h"
#include "Implementations/MSSQLLoginError.h"
#include "Implementations/MSSQLMessageList.h"
#include "Implementations/MSSQLQueryTimer.h"

#include <QHash>

#include <sybdb.h>

#include <algorithm>
#include <new>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString RunDomain = QStringLiteral("SQLClient");

KNQueryDetails wholeText(const QString &sql)
{
    return {sql, {0, sql.size()}};
}

/// Adds a batch's messages to its result sets, with lines and ranges of the whole text.
class MessageAttachment
{
public:
    explicit MessageAttachment(const KNQueryDetails &details)
        : m_details(details)
    {
    }

    /// `isFirst` for the messages of the batch's first statement.
    void attach(QList<DatabaseMessage> messages, KNDatabaseResultSet &resultSet, bool isFirst = false)
    {
        if (messages.isEmpty())
            return;
        for (DatabaseMessage &message : messages) {
            message.calculatedLineNumber = message.line + m_details.lineNumberOffset;
            if (message.type == DatabaseMessage::ServerMessage && message.isFailure())
                locate(message, isFirst);
            m_hadErrors = m_hadErrors || message.isFailure();
            message.msgtext = MSSQLLoginError::textForUsers(message);
        }
        resultSet.appendServerMessages(messages);
    }
    bool hadErrors() const { return m_hadErrors; }

private:
    /// Each search reads the batch: a loop that fails ten thousand times is not searched for each failure.
    static constexpr int MostSearches = 100;

    void locate(DatabaseMessage &message, bool isFirst)
    {
        if (m_searches++ < MostSearches)
            message.textRange = isFirst && message.procname.isEmpty()
                                    ? MSSQLErrorRange::inBatch(message, m_details)
                                    : MSSQLErrorRange::atLine(message, m_details);
    }

    const KNQueryDetails &m_details;
    int m_searches = 0;
    bool m_hadErrors = false;
};

QList<KNDisplayMessage> summaryOf(const KNDatabaseResultSet &resultSet, bool wasCancelled)
{
    QString summary = wasCancelled ? QStringLiteral("Query was cancelled.")
                                   : QStringLiteral("Command completed successfully.");
    const qsizetype rows = resultSet.rows().rowCount();
    if (!resultSet.columnNames().isEmpty())
        summary += KNFormat(" (%ld result%@).", rows, rows == 1 ? "" : "s");
    else if (resultSet.numberOfRowsAffected() != KNDatabaseResultSet::UnknownCount)
        summary += KNFormat(" (%ld rows affected).", resultSet.numberOfRowsAffected());
    return {{summary, wasCancelled ? KNDisplayMessage::Colour::Red : KNDisplayMessage::Colour::Black}};
}

/// The summaries of a batch's results. Results without columns share one text for each count of rows: the
/// texts would take more memory than the results.
class Summaries
{
public:
    QList<KNDisplayMessage> of(const KNDatabaseResultSet &resultSet, bool wasCancelled)
    {
        constexpr qsizetype MostTexts = 1000;
        if (wasCancelled || !resultSet.columnNames().isEmpty())
            return summaryOf(resultSet, wasCancelled);
        QList<KNDisplayMessage> &texts = m_texts[resultSet.numberOfRowsAffected()];
        if (texts.isEmpty())
            texts = summaryOf(resultSet, false);
        const QList<KNDisplayMessage> found = texts;
        if (m_texts.size() > MostTexts)
            m_texts.clear();
        return found;
    }

private:
    QHash<qint64, QList<KNDisplayMessage>> m_texts;
};

QString withFullStop(const QString &text)
{
    const QString trimmed = text.trimmed();
    return trimmed.endsWith(QLatin1Char('.')) ? trimmed : trimmed + QLatin1Char('.');
}

/// Limits of one run: further results without columns are only counted, further ones with columns cancel it.
constexpr qsizetype MostResultsWithoutColumns = 50'000;
constexpr qsizetype MostResults = 200'000;

/// Marks a result set as finished at the end of its scope.
class FinishedInTheEnd
{
public:
    explicit FinishedInTheEnd(KNDatabaseResultSet &resultSet)
        : m_resultSet(resultSet)
    {
    }
    ~FinishedInTheEnd() { m_resultSet.setFinished(); }
    FinishedInTheEnd(const FinishedInTheEnd &) = delete;
    FinishedInTheEnd &operator=(const FinishedInTheEnd &) = delete;

private:
    KNDatabaseResultSet &m_resultSet;
};

void showFailure(const KNError &error, KNDatabaseResultSet &resultSet)
{
    resultSet.setMessages({{withFullStop(error.localizedDescription()), KNDisplayMessage::Colour::Red}});
}

/// The position of the first character that cannot be sent: U+0000 ends a text for db-lib, and half of a
/// surrogate pair has no UTF-8 form. -1 if there is none.
qsizetype unsendablePosition(const QString &sql)
{
    for (qsizetype i = 0; i < sql.size(); ++i) {
        const QChar character = sql[i];
        const bool isPair = character.isHighSurrogate() && i + 1 < sql.size() && sql[i + 1].isLowSurrogate();
        if (isPair)
            ++i;
        else if (character.isNull() || character.isSurrogate())
            return i;
    }
    return -1;
}

/// The error for a batch that cannot be sent; not set if it can.
KNError unsendable(const KNQueryDetails &details, quint64 *line)
{
    const qsizetype position = unsendablePosition(details.targetQuery);
    if (position < 0)
        return KNError();
    const qsizetype lineFeeds = QStringView(details.targetQuery).first(position).count(u'\n');
    *line = details.lineNumberOffset + static_cast<quint64>(lineFeeds) + 1;
    return KNError(
        RunDomain, 0,
        details.targetQuery[position].isNull()
            ? KNFormat("Line %lu holds the character U+0000, behind which a server would see nothing. "
                       "The batch was not sent.",
                       *line)
            : KNFormat("Line %lu holds half of a surrogate pair, which is no character. The batch was "
                       "not sent.",
                       *line));
}

} // namespace

bool MSSQLClient::executeQueryDetails(const QList<KNQueryDetails> &queries, KNResultSetHolder &withResultSet,
                                      const Progress &, KNError *error)
{
    KNAssert(error, "Error must be specified.", "Implementations/MSSQLClient");
    const MSSQLRunScope run(m_cancellation);
    error->clear();
    m_hadErrors = false;
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

/// Runs a text as one batch. Unlike runBatch(), it fails if any statement fails.
void MSSQLClient::executeWhole(const QString &sql, KNResultSetHolder &holder, KNError *error)
{
    m_hadErrors = false;
    const bool complete = executeQueryInternal(sql, holder, error);
    if (error->isSet())
        return;
    *error = holder.failure();
    if (!complete && !error->isSet())
        *error =
            KNError(RunDomain, 0, QStringLiteral("The batch could not be handed to the client library."));
}

std::unique_ptr<DatabaseResultSet> MSSQLClient::executeQuery(const QString &sql, KNError *error)
{
    KNResultSetHolder holder;
    executeWhole(sql, holder, error);
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
    executeWhole(sql, holder, error);
    const auto resultSets = holder.resultSets();
    const auto withColumns =
        std::count_if(resultSets.begin(), resultSets.end(), [](const KNDatabaseResultSetPtr &resultSet) {
            return !resultSet->columnNames().isEmpty();
        });
    // A trigger determines the number of results, so this is no programming error.
    if (withColumns > 1 && !error->isSet())
        *error = KNError(RunDomain, 0, QStringLiteral("executeQuery can only return a single resultset."));
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
    error->clear();
    bool complete = false;
    try {
        complete = runBatch(details, withResultSet, error);
    } catch (const std::bad_alloc &) {
        abandonBatch();
        *error =
            KNError(RunDomain, 0,
                    QStringLiteral("There is not enough memory for the results. The batch was cancelled."));
    }
    if (error->isSet())
        m_hadErrors = true;
    if (!timer.stop())
        return complete;
    m_hadErrors = true;
    *error =
        KNError(RunDomain, 0,
                KNFormat("The batch took longer than the %d seconds that this connection allows, and was "
                         "stopped.",
                         timeout));
    return false;
}

bool MSSQLClient::runBatch(const KNQueryDetails &details, KNResultSetHolder &holder, KNError *error)
{
    MSSQLMessageList::sharedInstance().clearMessage();
    if (details.targetQuery.trimmed().isEmpty())
        return true;
    quint64 line = 0;
    if (const KNError refusal = unsendable(details, &line)) {
        *error = refusal;
        appendFailure(details, refusal, line, holder);
        return false;
    }
    bool complete = false;
    switch (sendBatch(details.targetQuery)) {
    case Sent::NotSent:
        return false;
    case Sent::Failed:
        complete = failBatch(details, holder, error);
        break;
    case Sent::Executed:
        complete = readResults(details, nullptr, holder, error);
        break;
    }
    MSSQLMessageList::sharedInstance().clearMessage();
    stopBatch();
    return complete;
}

/// Sends the text and waits for the first answer: the two halves of dbsqlexec(). The wait between them is
/// outside db-lib and without the handle, so that a cancel can take the handle.
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
        // An owned duplicate: a cancel that times out closes db-lib's descriptor.
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

/// Whether there is no working connection. The handle must be held.
bool MSSQLClient::isLost() const
{
    return !m_dbProc || dbdead(m_dbProc);
}

/// Appends a batch's failure as a separate result.
KNDatabaseResultSetPtr MSSQLClient::appendFailure(const KNQueryDetails &details, const KNError &error,
                                                  quint64 line, KNResultSetHolder &holder)
{
    const auto resultSet = std::make_shared<KNDatabaseResultSet>(details.targetQuery);
    showFailure(error, *resultSet);
    resultSet->setCalculatedLineNumber(line);
    resultSet->setQueryTextRange(details.queryRange);
    resultSet->setFinished();
    holder.append(resultSet);
    return resultSet;
}

/// Handles a batch whose first statement failed: its later statements may have run nevertheless, and their
/// results follow the failure.
bool MSSQLClient::failBatch(const KNQueryDetails &details, KNResultSetHolder &holder, KNError *error)
{
    quint64 lastLine = 0;
    const KNError failure = batchError(details, &lastLine);
    const KNDatabaseResultSetPtr resultSet = appendFailure(details, failure, lastLine, holder);
    const qsizetype before = holder.count();
    readResults(details, resultSet, holder, error);
    *error = failure;

    KNLogHelper *log = KNLogHelper::sharedInstance();
    const qsizetype remaining = holder.count() - before;
    if (remaining > 0) {
        log->logMessage("Had count. Didn't expect count.");
        log->logMessage("Error executing command: %@. Still had %ld results.", failure.localizedDescription(),
                        remaining);
    } else {
        log->logMessage("Error executing command: %@.", failure.localizedDescription());
    }
    return false;
}

/// Reads all results of the batch, which follow the failure of its first statement if it failed. False, with
/// an error, if the answer could not be read to its end.
bool MSSQLClient::readResults(const KNQueryDetails &details, KNDatabaseResultSetPtr previous,
                              KNResultSetHolder &holder, KNError *error)
{
    MSSQLMessageList &messages = MSSQLMessageList::sharedInstance();
    MessageAttachment attachment(details);
    Summaries summaries;
    const KNDatabaseResultSetPtr failure = previous;
    bool previousHadCompute = false;
    qint64 unlisted = 0; // results without columns beyond the limit of the list
    Next next = nextResult();
    for (; next == Next::Result; next = nextResult()) {
        if (previous)
            attachment.attach(messages.takeMessages(), *previous, previous == failure);
        const auto resultSet = std::make_shared<KNDatabaseResultSet>(details.targetQuery);
        const FinishedInTheEnd finished(*resultSet);
        readColumns(*resultSet);
        const qsizetype listed = holder.count();
        if (listed >= MostResults) {
            next = Next::TooMany;
            break;
        }
        if (previous && listed >= MostResultsWithoutColumns && resultSet->columnNames().isEmpty()) {
            ++unlisted;
            readRows(resultSet, holder);
            continue;
        }
        holder.append(resultSet);
        const KNDatabaseResultSetPtr compute = readRows(resultSet, holder);
        resultSet->setMessages(summaries.of(*resultSet, wasCancelled()));
        if (previousHadCompute && resultSet->numberOfRowsAffected() == KNDatabaseResultSet::UnknownCount &&
            resultSet->rows().rowCount() == 0)
            holder.remove(resultSet);
        else
            previous = resultSet;
        if (compute)
            compute->setFinished();
        previousHadCompute = compute != nullptr;
    }

    if (next == Next::TooMany)
        abandonBatch();
    quint64 lastLine = 0;
    if (!isConnected())
        *error = batchError(details, &lastLine);
    else if (next == Next::Unreadable)
        *error =
            KNError(RunDomain, 0,
                    QStringLiteral("The rest of the server's answer could not be read. It was cancelled."));
    else if (next == Next::TooMany)
        *error = KNError(RunDomain, 0,
                         KNFormat("There are more than %ld results. The batch was cancelled.", MostResults));
    const QList<DatabaseMessage> last = messages.takeLastMessages();
    if (!previous && !last.isEmpty()) {
        previous = std::make_shared<KNDatabaseResultSet>(details.targetQuery);
        previous->setMessages(summaryOf(*previous, wasCancelled()));
        previous->setFinished();
        holder.append(previous);
    }
    if (previous) {
        attachment.attach(last, *previous, previous == failure);
        if (unlisted > 0)
            previous->setMessages(
                previous->messages() +
                QList<KNDisplayMessage>{{KNFormat("%ld more statements without rows.", unlisted)}});
        if (error->isSet())
            showFailure(*error, *previous);
    }
    if (attachment.hadErrors())
        m_hadErrors = true;
    return !error->isSet();
}

/// Advances to the next result. A failed statement in the middle of a batch has no result, but later ones
/// have.
MSSQLClient::Next MSSQLClient::nextResult()
{
    for (;;) {
        const MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
        if (!m_dbProc || m_cancellation.isRequested())
            return Next::End;
        const RETCODE code = dbresults(m_dbProc);
        if (MSSQLMessageList::lacksMemory())
            throw std::bad_alloc();
        if (code == SUCCEED)
            return m_cancellation.isRequested() ? Next::End : Next::Result;
        if (code == NO_MORE_RESULTS || dbdead(m_dbProc))
            return Next::End;
        // db-lib has pending rows that it could not read, and would report them for ever. Its error handler
        // has cancelled the batch.
        if (MSSQLMessageList::sharedInstance().newestNumber() == SYBERPND)
            return Next::Unreadable;
    }
}

/// Stops a batch that cannot be read further.
void MSSQLClient::abandonBatch()
{
    MSSQLMessageList::sharedInstance().clearMessage();
    const MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
    stopAtServer();
}

/// Ends the batch, so that the next one receives no leftover results. A cancelled run is cancelled at the
/// server here, on the thread that ran it.
void MSSQLClient::stopBatch()
{
    const MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
    if (m_cancellation.isRequested())
        stopAtServer();
    else if (!isLost() && dbcanquery(m_dbProc) != SUCCEED)
        stopAtServer();
}
