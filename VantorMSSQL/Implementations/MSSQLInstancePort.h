#pragma once

#include <QString>

#include <chrono>

/// Asks the SQL Server Browser (MC-SQLR, CLNT_UCAST_INST) at `ipAddress` on which TCP port `instance`
/// listens. 0 when it does not know or does not answer within `timeout`. Blocks; any thread.
quint16 dbportforinstance(const QString &ipAddress, const QString &instance,
                          std::chrono::milliseconds timeout = std::chrono::seconds(2));

/// The UDP port on which Browsers are asked, 1434 unless a test says otherwise. Process-wide.
void setBrowserServicePort(quint16 port);

/// Reads the TCP port of an instance out of a Browser's answer (SVR_RESP); 0 when there is none. Bad input is
/// no error.
quint16 portFromBrowserAnswer(const QByteArray &answer, const QString &instance);
