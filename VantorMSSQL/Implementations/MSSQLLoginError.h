#pragma once

#include "Database/DatabaseMessage.h"
#include "Database/VantorLoginProblem.h"

#include <QList>

#include <chrono>

struct MSSQLServerAddress;

/// Errors of connecting.
namespace MSSQLLoginError {

inline const QString Domain = QStringLiteral("com.quorvex.mssql.databaseConnection");
constexpr int Hopeless = 1; ///< the code of an error that no other protocol version would mend
/// db-lib's own texts, a list of strings in the user info.
inline const QString LibraryTextsKey = QStringLiteral("com.quorvex.mssql.libraryTexts");

/// db-lib's text with the server called "SQL Server".
QString textForUsers(const QString &libraryText);
/// The text of a message for users: db-lib's as textForUsers(), the server's as it is.
QString textForUsers(const DatabaseMessage &message);

/// The failure of a login from what the server and db-lib have reported. `host` is the server as the user
/// knows it.
KNError fromMessages(const QList<DatabaseMessage> &messages, const QString &host, quint16 port);
/// The server could not be reached; `reason` is a sentence or null.
KNError unreachable(const QString &host, quint16 port, const QString &reason);
/// The server took the connection and did not go on in time. `what` is the rest of the sentence that begins
/// with the server: "did not finish the login".
KNError timedOut(const QString &host, quint16 port, std::chrono::seconds timeout, const char *what);
KNError cancelled();
/// An error that ends all attempts.
KNError hopeless(const QString &text);

} // namespace MSSQLLoginError
