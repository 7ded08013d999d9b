#pragma once

#include "Database/DatabaseMessage.h"
#include "Database/VantorLoginProblem.h"

#include <QList>

#include <chrono>

struct MSSQLServerAddress;

/// Errors of connecting.
namespace MSSQLLoginError {

inline const QString Domain = QStringLiteral("com.quorvex.mssql.databaseConnection");
constexpr int Hopeless = 1; ///< code of an error that another protocol version would not avoid
/// db-lib's own texts, a list of strings in the user info.
inline const QString LibraryTextsKey = QStringLiteral("com.quorvex.mssql.libraryTexts");

/// Returns db-lib's text with the server named "SQL Server".
QString textForUsers(const QString &libraryText);
/// The text of a message for users: db-lib's texts as by textForUsers(), the server's unchanged.
QString textForUsers(const DatabaseMessage &message);

/// Creates a login's error from the messages of the server and db-lib. `host` is the server as the user typed
/// it.
KNError fromMessages(const QList<DatabaseMessage> &messages, const QString &host, quint16 port);
/// The error for an unreachable server; `reason` is a sentence or null.
KNError unreachable(const QString &host, quint16 port, const QString &reason);
/// The error for a server that accepted the connection and then did not answer in time. `what` completes the
/// sentence that begins with the server: "did not finish the login".
KNError timedOut(const QString &host, quint16 port, std::chrono::seconds timeout, const char *what);
KNError cancelled();
/// An error that ends all attempts.
KNError hopeless(const QString &text);

} // namespace MSSQLLoginError
