#pragma once

#include <QtGlobal>

/// The number of bytes written to a TCP socket since it was opened; 0 if the system does not report it. Any
/// thread.
quint64 MSSQLBytesWritten(int socket);
