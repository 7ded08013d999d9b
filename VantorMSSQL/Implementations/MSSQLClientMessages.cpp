#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLClientCallbacks.h"
#include "Implementations/MSSQLErrorRange.h"
#include "Implementations/MSSQLLoginError.h"
#include "Implementations/MSSQLMessageList.h"

#include <QSet>

#include <sybdb.h>

namespace {

const QString TooManyConnections = QStringLiteral("Max connections reached, increase value of TDS_MAX_CONN");

/// Client errors that only repeat what another message says, or that are harmless.
bool isEmptyOfContent(const QString &text)
{
    static const QSet<QString> texts = {
        QStringLiteral("Adaptive Server connection failed"),
        QStringLiteral("General SQL Server error: Check messages from the SQL Server"),
        QStringLiteral("Illegal version level specified"),
        TooManyConnections,
    };
    return texts.contains(text);
}

MSSQLCancellation *cancellationOf(DBPROCESS *dbproc)
{
    return dbproc ? reinterpret_cast<MSSQLCancellation *>(dbgetuserdata(dbproc)) : nullptr;
}

int addClientError(DBPROCESS *dbproc, int severity, int dberr, const char *dberrstr)
{
    constexpr int EndsInHalfACharacter = 2401;

    // db-lib's own text names two character sets, both of them "(null)".
    QString text = dberr == EndsInHalfACharacter
                       ? QStringLiteral("Half of a character at the end of a value is left out.")
                       : QString::fromUtf8(dberrstr);
    if (isEmptyOfContent(text) || !dbproc || dberr == 0)
        return INT_CANCEL;
    text = text.remove(QStringLiteral("Server name not found in configuration files")).trimmed();
    if (text.isEmpty())
        return INT_CANCEL;

    DatabaseMessage message;
    message.type = DatabaseMessage::ClientError;
    message.msgno = dberr;
    message.severity = severity;
    message.msgtext = text;
    // This message arrives for each value: it is listed once for each result.
    MSSQLMessageList &list = MSSQLMessageList::sharedInstance();
    if (message.isValueWarning() && list.messages().contains(message))
        return INT_CANCEL;
    list.addMessage(message);
    if (dberr == SYBERPND)
        dbcancel(dbproc);
    return INT_CANCEL;
}

int addServerMessage(DBINT msgno, int msgstate, int severity, const char *msgtext, const char *srvname,
                     const char *procname, int line)
{
    constexpr int ChangedDatabase = 5701;
    constexpr int ChangedLanguage = 5703;

    const QString text = QString::fromUtf8(msgtext);
    if (text == TooManyConnections)
        return INT_CANCEL;
    if (msgno == ChangedDatabase || msgno == ChangedLanguage)
        return 0;

    DatabaseMessage message;
    message.type = DatabaseMessage::ServerMessage;
    message.msgno = msgno;
    message.msgstate = msgstate;
    message.severity = severity;
    message.line = static_cast<quint64>(line);
    message.msgtext = text;
    message.srvname = QString::fromUtf8(srvname);
    message.procname = QString::fromUtf8(procname);
    MSSQLMessageList::sharedInstance().addMessage(message);
    return 0;
}

/// Runs the body of a handler. No exception may pass through db-lib: if memory is exhausted the message is
/// lost, and the list records that.
template <typename Body>
int withoutExceptions(const Body &body) noexcept
{
    try {
        return body();
    } catch (const std::bad_alloc &) {
        MSSQLMessageList::noteLackOfMemory();
        return INT_CANCEL;
    }
}

} // namespace

int err_handler(DBPROCESS *dbproc, int severity, int dberr, int, char *dberrstr, char *)
{
    return withoutExceptions([&] { return addClientError(dbproc, severity, dberr, dberrstr); });
}

int msg_handler(DBPROCESS *, DBINT msgno, int msgstate, int severity, char *msgtext, char *srvname,
                char *procname, int line)
{
    return withoutExceptions(
        [&] { return addServerMessage(msgno, msgstate, severity, msgtext, srvname, procname, line); });
}

int interruptible_err_handler(DBPROCESS *dbproc, int severity, int dberr, int oserr, char *dberrstr,
                              char *oserrstr)
{
    if (dberr == SYBETIME) {
        MSSQLCancellation *cancellation = cancellationOf(dbproc);
        const auto action =
            cancellation ? cancellation->timeoutAction() : MSSQLCancellation::Action::GiveUpConnection;
        if (action != MSSQLCancellation::Action::GiveUpConnection)
            return action == MSSQLCancellation::Action::SendAttention ? INT_TIMEOUT : INT_CONTINUE;
    }
    return err_handler(dbproc, severity, dberr, oserr, dberrstr, oserrstr);
}

int check_interrupt(void *dbproc)
{
    const MSSQLCancellation *cancellation = cancellationOf(static_cast<DBPROCESS *>(dbproc));
    return cancellation && cancellation->wantsInterrupt();
}

int handle_interrupt(void *)
{
    // Ends the wait with the error SYBETIME, whose handler decides how to continue.
    return INT_CANCEL;
}

KNRange MSSQLClient::processErrorDetails(const DatabaseMessage &message,
                                         const KNQueryDetails &forQueryDetails)
{
    return MSSQLErrorRange::inBatch(message, forQueryDetails);
}

KNError MSSQLClient::batchError(const KNQueryDetails &details, quint64 *lastLine) const
{
    constexpr qint32 DeadConnection = 20047;

    QStringList texts;
    QStringList libraryTexts;
    QSet<QString> known;
    KNRange range;
    for (const DatabaseMessage &message : MSSQLMessageList::sharedInstance().messages()) {
        *lastLine = message.line + details.lineNumberOffset - 1;
        if (message.msgno == DeadConnection)
            continue;
        DatabaseMessage shown = message;
        shown.msgtext = MSSQLLoginError::textForUsers(message);
        const QString text = shown.failureText();
        if (known.contains(text))
            continue;
        known.insert(text);
        texts.append(text);
        if (message.type == DatabaseMessage::ClientError)
            libraryTexts.append(message.msgtext);
        if (!range.isFound())
            range = processErrorDetails(message, details);
    }
    QVariantMap userInfo;
    if (!libraryTexts.isEmpty())
        userInfo.insert(MSSQLLoginError::LibraryTextsKey, libraryTexts);
    if (range.isFound())
        userInfo.insert(QStringLiteral("com.quorvex.osx.vantor.queryErrorRanges"),
                        QVariantList{QVariant::fromValue(range)});
    const QString loss = QStringLiteral("The connection to the server was lost.");
    const bool isOpen = isConnected();
    QString description = texts.join(QStringLiteral("\r\n"));
    if (description.isEmpty())
        description = wasCancelled() ? QStringLiteral("Query was cancelled.")
                      : isOpen       ? QStringLiteral("The server reported a failure without saying why.")
                                     : loss;
    else if (!isOpen)
        userInfo.insert(KNError::RecoverySuggestionKey, loss); // db-lib's text speaks of its own reading
    return KNError(QStringLiteral("SQLClient"), 0, description, userInfo);
}
