#include "Implementations/MSSQLLoginError.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"

#include <QSet>

#include <algorithm>

namespace MSSQLLoginError {

namespace {

/// Numbers of server messages, from its list of system error messages.
VantorLoginProblem problemOfNumber(int number)
{
    static const QSet<int> databaseNumbers = {911, 916, 4060, 4064};
    // Paused, too many connections; Azure: unknown server, database not available, firewall rules.
    static const QSet<int> serverNumbers = {17142, 17809, 40532, 40613, 40615, 40914};
    constexpr int FirstLoginNumber = 18450;
    constexpr int LastLoginNumber = 18499;
    if (databaseNumbers.contains(number))
        return VantorLoginProblem::DatabaseRefused;
    const bool isLogin = number >= FirstLoginNumber && number <= LastLoginNumber;
    return isLogin || serverNumbers.contains(number) ? VantorLoginProblem::LoginRefused
                                                     : VantorLoginProblem::Unknown;
}

/// "Login failed" follows a refused database, so the database is checked first.
VantorLoginProblem problemOf(const QList<DatabaseMessage> &messages)
{
    auto problem = VantorLoginProblem::Unknown;
    for (const DatabaseMessage &message : messages) {
        if (message.type != DatabaseMessage::ServerMessage)
            continue;
        const VantorLoginProblem each = problemOfNumber(message.msgno);
        if (each == VantorLoginProblem::DatabaseRefused)
            return each;
        if (each != VantorLoginProblem::Unknown)
            problem = each;
    }
    return problem;
}

QString checkServer(const QString &host, quint16 port)
{
    return KNFormat("Check the server name \"%@\" and the port %d, that SQL Server is running there and "
                    "accepts TCP connections, and that no firewall blocks them.",
                    host, port);
}

QString suggestionFor(VantorLoginProblem problem, const QString &host, quint16 port)
{
    switch (problem) {
    case VantorLoginProblem::LoginRefused:
        return KNFormat("The server \"%@\", port %d, refused the login. Check the user name and the "
                        "password, and that the login is enabled and may connect.",
                        host, port);
    case VantorLoginProblem::DatabaseRefused:
        return KNFormat("The server \"%@\", port %d, refused the database. Check its name, that it is "
                        "online, and that the login is one of its users.",
                        host, port);
    default:
        return checkServer(host, port);
    }
}

} // namespace

QString textForUsers(const QString &libraryText)
{
    return QString(libraryText).replace(QLatin1String("Adaptive Server"), QLatin1String("SQL Server"));
}

QString textForUsers(const DatabaseMessage &message)
{
    return message.type == DatabaseMessage::ClientError ? textForUsers(message.msgtext) : message.msgtext;
}

KNError fromMessages(const QList<DatabaseMessage> &messages, const QString &host, quint16 port)
{
    constexpr qint32 CannotConnect = 20009;
    QStringList texts;
    QStringList libraryTexts;
    bool isUnreachable = false;
    for (const DatabaseMessage &message : messages) {
        const QString text =
            KNFormat("%@ (Msg %d, Level %d).", textForUsers(message), message.msgno, message.severity);
        if (!texts.contains(text))
            texts.append(text);
        if (message.type == DatabaseMessage::ClientError)
            libraryTexts.append(message.msgtext);
        isUnreachable |= message.type == DatabaseMessage::ClientError && message.msgno == CannotConnect;
    }
    if (texts.isEmpty()) {
        KNLogHelper::sharedInstance()->logMessage("Failed to login. Unknown reason. %ld messages. (%@).",
                                                  messages.size(), texts.join(QLatin1Char(',')));
        texts.append(KNFormat("The server \"%@\", port %d, ended the login without a reason.", host, port));
    }
    VantorLoginProblem problem = problemOf(messages);
    if (problem == VantorLoginProblem::Unknown && isUnreachable)
        problem = VantorLoginProblem::ServerUnreachable;
    QVariantMap info = VantorLoginProblemInfo(problem);
    info.insert(KNError::RecoverySuggestionKey, suggestionFor(problem, host, port));
    info.insert(LibraryTextsKey, libraryTexts);
    return KNError(Domain, 0, texts.join(QStringLiteral("\r\n")), info);
}

KNError unreachable(const QString &host, quint16 port, const QString &reason)
{
    DatabaseMessage message; // same fields as db-lib's report
    message.type = DatabaseMessage::ClientError;
    message.msgno = 20009;
    message.severity = 9;
    message.msgtext = KNFormat("Unable to connect: Adaptive Server is unavailable or does not exist (%@, "
                               "port %d)",
                               host, port);
    if (!reason.isEmpty())
        message.msgtext += QStringLiteral(": ") + reason;
    return fromMessages({message}, host, port);
}

KNError timedOut(const QString &host, quint16 port, std::chrono::seconds timeout, const char *what)
{
    QVariantMap info = VantorLoginProblemInfo(VantorLoginProblem::ServerUnreachable);
    info.insert(KNError::RecoverySuggestionKey,
                QStringLiteral("Check that the port is SQL Server's, or allow more time for connecting."));
    return KNError(Domain, Hopeless,
                   KNFormat("The server \"%@\", port %d, %@ within %ld s.", host, port, what,
                            static_cast<qint64>(timeout.count())),
                   info);
}

KNError cancelled()
{
    return KNError(Domain, Hopeless, QStringLiteral("Connecting was cancelled."),
                   VantorLoginProblemInfo(VantorLoginProblem::Cancelled));
}

KNError hopeless(const QString &text)
{
    return KNError(Domain, Hopeless, text);
}

} // namespace MSSQLLoginError
