#pragma once

#include "Implementations/MSSQLEncryption.h"

#include <chrono>

/// Finds out why an encrypted login fails, which db-lib does not report: connects to the server, requests
/// encryption, does the TLS handshake and verifies the server's certificate according to the settings (MS-TDS
/// 2.2.6.5, the handshake inside PRELOGIN packets), without logging in. Returns a text for the user; null if
/// there is no problem or `host` does not answer. Blocks for `timeout` at most. Any thread. The certificate
/// must be issued for `name`, or for `host` if `name` is empty; a valid one is stored in `certificate` as
/// PEM. The check ends, without a problem, when `cancelDescriptor` becomes readable; -1 for none.
QString MSSQLEncryptionProblem(const QString &host, quint16 port, const MSSQLEncryption &encryption,
                               std::chrono::milliseconds timeout, const QString &name = {},
                               QByteArray *certificate = nullptr, int cancelDescriptor = -1);
