#pragma once

#include "Foundation/KNError.h"
#include "Implementations/MSSQLPreloginSocket.h"

struct MSSQLServerAddress;

/// Detects servers that do not answer before db-lib connects to them: db-lib would wait for them while it
/// holds the lock that serialises all logins of the process. Any thread.
namespace MSSQLServerCheck {

/// The result of a check.
enum class Answer {
    Given,     ///< it answered now or within the last minute
    Uncertain, ///< it refuses or closes connections, which db-lib detects as quickly
    Silent,    ///< it accepts connections and does not answer
    Unreachable,
    Cancelled,
};

/// Exchanges PRELOGIN (MS-TDS 2.2.6.5) with a server on a separate connection; blocks until the deadline at
/// most. If the server has a name, all of its addresses are tried and `server` receives the one that is
/// connected. `cancelDescriptor` as in MSSQLPreloginSocket; `reason` receives the reason if the server is
/// Unreachable.
Answer ask(MSSQLServerAddress &server, MSSQLPreloginSocket::Clock::time_point deadline, int cancelDescriptor,
           QString *reason);

/// Whether the server has answered within the last minute.
bool hasAnswered(const MSSQLServerAddress &server);
/// Records that a login succeeded, which proves that the server answers.
void noteAnswer(const MSSQLServerAddress &server);
/// Records that a login stalled, so that the next one resolves the server's name and checks it again.
void forget(const MSSQLServerAddress &server);

/// Creates a PRELOGIN message that requests a kind of encryption.
QByteArray preloginAsking(char encryption);

} // namespace MSSQLServerCheck
