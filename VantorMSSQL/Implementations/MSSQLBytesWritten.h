#pragma once

#include <QtGlobal>

/// How many bytes have been written to a TCP socket, counting from its opening; 0 where the system does not
/// tell. Any thread.
quint64 MSSQLBytesWritten(int socket);
