#pragma once

#include "Foundation/KNError.h"

#include <QVariantMap>

#include <optional>

/// The encryption of a connection, and how the server's certificate is verified.
struct MSSQLEncryption
{
    /// Off: no encryption. Request: the login if the server supports it, everything if the server requires
    /// it; protects from eavesdroppers, but not from an impostor server. Require: everything, or no
    /// connection; this is the mode of every connection with a named certificate, since a changed PRELOGIN
    /// could switch Request to clear text.
    enum class Mode { Off, Request, Require };

    Mode mode = Mode::Request;
    QString trustedCertificateFile; ///< absolute; null when none is named
    /// PEM; if not empty, the server must present exactly this certificate, which was verified before.
    QByteArray pinnedCertificate;
    bool verifiesCertificate = false;
    bool checksHostName = false; ///< implies verifiesCertificate

    /// Parses the parameters of MSSQLDatabaseConnectionDetails::encryption().
    static std::optional<MSSQLEncryption> fromSessionParameters(const QVariantMap &parameters,
                                                                KNError *error);
};
