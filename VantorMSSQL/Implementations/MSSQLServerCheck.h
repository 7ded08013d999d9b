#pragma once

#include "Foundation/KNError.h"
#include "Implementations/MSSQLPreloginSocket.h"

struct MSSQLServerAddress;

/// Finds servers that do not answer before db-lib connects to them: db-lib would wait for them under the lock
/// that serialises all logins of the process. Any thread.
namespace MSSQLServerCheck {

/// How a server was found.
enum class Answer {
    Given,     ///< it speaks, or did so within the last minute
    Uncertain, ///< it refuses or closes connections: db-lib learns that as quickly
    Silent,    ///< it takes connections and says nothing
    Unreachable,
    Cancelled,
};

/// Exchanges PRELOGIN (MS-TDS 2.2.6.5) with a server on a connection of its own, until the deadline at most.
/// `cancelDescriptor` as MSSQLPreloginSocket has it; `reason` receives why a server is Unreachable.
Answer ask(const MSSQLServerAddress &server, MSSQLPreloginSocket::Clock::time_point deadline,
           int cancelDescriptor, QString *reason);

/// Whether the server has answered within the last minute.
bool hasAnswered(const MSSQLServerAddress &server);
/// A login has succeeded: the server has answered just now.
void noteAnswer(const MSSQLServerAddress &server);
/// A login has stalled: the next one asks the server again.
void forget(const MSSQLServerAddress &server);

/// A PRELOGIN message that asks for a kind of encryption.
QByteArray preloginAsking(char encryption);

} // namespace MSSQLServerCheck
