#pragma once

#include "Implementations/MSSQLEncryption.h"

#include <chrono>

/// Why an encrypted login fails, which db-lib does not tell: connects to the server, asks for encryption,
/// shakes hands and looks at the server's certificate as the settings say (MS-TDS 2.2.6.5, the handshake
/// inside of PRELOGIN packets), without logging in. Returns a text for the user, or null when all that goes
/// well or nobody answers at `host`. Blocks no longer than `timeout`. Any thread. The certificate must be for
/// `name`, where that is given instead of `host`; if it is in order `certificate` gets it as PEM.
/// `cancelDescriptor` ends the check, without a problem, when it can be read; -1 for none.
QString MSSQLEncryptionProblem(const QString &host, quint16 port, const MSSQLEncryption &encryption,
                               std::chrono::milliseconds timeout, const QString &name = {},
                               QByteArray *certificate = nullptr, int cancelDescriptor = -1);
