#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QByteArray>
#include <QDateTime>

#include <optional>

/// A server's TLS certificate whose check failed, and which the user may nevertheless decide to trust. Any
/// thread.
struct KNSHARED_EXPORT KNServerCertificate
{
    QByteArray pem;
    QString subject;
    QString issuer;
    QDateTime validFrom;
    QDateTime validUntil;

    /// The SHA-256 fingerprint as "AB:CD:...", in two lines.
    QString fingerprint() const { return fingerprintOf(pem); }
    /// The same of the first certificate in a PEM text; empty if there is none.
    static QString fingerprintOf(const QByteArray &pem);

    /// The details of an error that contains this certificate.
    QVariantMap errorInfo() const;
    /// The certificate that a connector stored in an error; nullopt if there is none.
    static std::optional<KNServerCertificate> fromError(const KNError &error);

    /// Makes the connection accept this certificate and no other one.
    void pinTo(VantorDBC &details) const;
};
