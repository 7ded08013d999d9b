#pragma once

#include "Database/KNServerCertificate.h"
#include "Implementations/MSSQLEncryption.h"

#include <chrono>

/// The result of a check of a server's encryption.
struct MSSQLEncryptionFinding
{
    QString problem;        ///< a text for the user; null if there is no problem or no answer
    QByteArray certificate; ///< the verified one, as PEM; empty if none was verified
    /// The certificate that is the problem, if the user may decide to trust it.
    std::optional<KNServerCertificate> untrusted = std::nullopt;
};

/// Finds out why an encrypted login fails, which db-lib does not report: connects to the server, requests
/// encryption, does the TLS handshake and verifies the server's certificate according to the settings (MS-TDS
/// 2.2.6.5, the handshake inside PRELOGIN packets), without logging in. Blocks for `timeout` at most. Any
/// thread. The certificate must be issued for `name`, or for `host` if `name` is empty. The check ends,
/// without a problem, when `cancelDescriptor` becomes readable; -1 for none.
MSSQLEncryptionFinding MSSQLCheckEncryption(const QString &host, quint16 port,
                                            const MSSQLEncryption &encryption,
                                            std::chrono::milliseconds timeout, const QString &name = {},
                                            int cancelDescriptor = -1);
