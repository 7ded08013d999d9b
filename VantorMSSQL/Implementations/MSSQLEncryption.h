#pragma once

#include "Foundation/KNError.h"

#include <QVariantMap>

#include <optional>

/// How a connection is to be encrypted, and how the server is to prove who it is.
struct MSSQLEncryption
{
    /// Off: never. Request: the login when the server can, everything when it insists; that keeps listeners
    /// out, but not who pretends to be the server. Require: everything, or no connection; the mode of every
    /// connection for which a certificate is named, since a changed PRELOGIN could switch Request to clear
    /// text.
    enum class Mode { Off, Request, Require };

    Mode mode = Mode::Request;
    QString trustedCertificateFile; ///< absolute; null when none is named
    /// PEM; when there is one, the server must show this very certificate, which has been verified.
    QByteArray pinnedCertificate;
    bool verifiesCertificate = false;
    bool checksHostName = false; ///< never without verifiesCertificate

    /// As MSSQLDatabaseConnectionDetails::encryption() says.
    static std::optional<MSSQLEncryption> fromSessionParameters(const QVariantMap &parameters,
                                                                KNError *error);
};
