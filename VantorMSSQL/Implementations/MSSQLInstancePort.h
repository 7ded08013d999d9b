#pragma once

#include <QString>

#include <chrono>

/// Queries the SQL Server Browser (MC-SQLR, CLNT_UCAST_INST) at `ipAddress` for the TCP port of `instance`. 0
/// if the Browser does not know the instance or does not answer within `timeout`. Blocks; any thread.
quint16 dbportforinstance(const QString &ipAddress, const QString &instance,
                          std::chrono::milliseconds timeout = std::chrono::seconds(2));

/// Sets the UDP port of Browser services; 1434 unless a test changes it. Process-wide.
void setBrowserServicePort(quint16 port);

/// Parses the TCP port of an instance from a Browser's answer (SVR_RESP); 0 if there is none or the answer is
/// malformed.
quint16 portFromBrowserAnswer(const QByteArray &answer, const QString &instance);
