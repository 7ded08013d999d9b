#include "Implementations/MSSQLCertificateText.h"

#include "Foundation/KNFormat.h"

#include <QDateTime>
#include <QHostAddress>
#include <QStringList>

#include <gnutls/gnutls.h>
#include <gnutls/x509.h>

#include <memory>

namespace {

using Certificate = std::unique_ptr<gnutls_x509_crt_int, decltype(&gnutls_x509_crt_deinit)>;

Certificate serverCertificate(gnutls_session_t session)
{
    unsigned count = 0;
    const gnutls_datum_t *chain = gnutls_certificate_get_peers(session, &count);
    gnutls_x509_crt_t certificate = nullptr;
    if (count == 0 || gnutls_x509_crt_init(&certificate) != GNUTLS_E_SUCCESS)
        return Certificate(nullptr, gnutls_x509_crt_deinit);
    Certificate owned(certificate, gnutls_x509_crt_deinit);
    if (gnutls_x509_crt_import(certificate, &chain[0], GNUTLS_X509_FMT_DER) != GNUTLS_E_SUCCESS)
        owned.reset();
    return owned;
}

/// The names and addresses that a certificate was issued for: its alternative names, or its common name if it
/// has none.
QStringList namesOf(gnutls_x509_crt_t certificate)
{
    QStringList names;
    char text[256];
    for (unsigned index = 0;; ++index) {
        size_t size = sizeof text;
        const int type = gnutls_x509_crt_get_subject_alt_name(certificate, index, text, &size, nullptr);
        if (type == GNUTLS_E_REQUESTED_DATA_NOT_AVAILABLE)
            break;
        if (type == GNUTLS_SAN_DNSNAME)
            names.append(QString::fromUtf8(text, static_cast<qsizetype>(size)));
        else if (type == GNUTLS_SAN_IPADDRESS && size == 4)
            names.append(QHostAddress(static_cast<quint32>(static_cast<quint8>(text[0])) << 24 |
                                      static_cast<quint32>(static_cast<quint8>(text[1])) << 16 |
                                      static_cast<quint32>(static_cast<quint8>(text[2])) << 8 |
                                      static_cast<quint8>(text[3]))
                             .toString());
        else if (type == GNUTLS_SAN_IPADDRESS && size == 16)
            names.append(QHostAddress(reinterpret_cast<const quint8 *>(text)).toString());
    }
    size_t size = sizeof text;
    if (names.isEmpty() &&
        gnutls_x509_crt_get_dn_by_oid(certificate, GNUTLS_OID_X520_COMMON_NAME, 0, 0, text, &size) == 0)
        names.append(QString::fromUtf8(text, static_cast<qsizetype>(size)));
    return names;
}

QString issuerOf(gnutls_x509_crt_t certificate)
{
    char text[256];
    size_t size = sizeof text;
    if (gnutls_x509_crt_get_issuer_dn(certificate, text, &size) != GNUTLS_E_SUCCESS)
        return QStringLiteral("an authority without a name");
    return QString::fromUtf8(text, static_cast<qsizetype>(size));
}

QString subjectOf(gnutls_x509_crt_t certificate)
{
    char text[256];
    size_t size = sizeof text;
    if (gnutls_x509_crt_get_dn(certificate, text, &size) != GNUTLS_E_SUCCESS || size == 0)
        return namesOf(certificate).join(QStringLiteral(", "));
    return QString::fromUtf8(text, static_cast<qsizetype>(size));
}

QString dateText(time_t time)
{
    return QDateTime::fromSecsSinceEpoch(time, Qt::UTC).toString(QStringLiteral("yyyy-MM-dd hh:mm 'UTC'"));
}

/// Null if the certificate may be used for servers.
QString purposeText(gnutls_x509_crt_t certificate)
{
    if (gnutls_x509_crt_check_key_purpose(certificate, GNUTLS_KP_TLS_WWW_SERVER, 0) != 0)
        return QString();
    return QStringLiteral("The server's certificate may not be used for servers: its extended key usage does "
                          "not include server authentication. Ask the server's administrator for one that "
                          "does; otherwise this is not the server it says it is.");
}

QString otherText(unsigned status)
{
    gnutls_datum_t text = {};
    gnutls_certificate_verification_status_print(status, GNUTLS_CRT_X509, &text, 0);
    const QString reason = QString::fromUtf8(reinterpret_cast<const char *>(text.data), text.size).trimmed();
    gnutls_free(text.data);
    return KNFormat(
        "The server's certificate cannot be trusted: %@ Ask the server's administrator for a new one.",
        reason);
}

} // namespace

QString MSSQLCertificateText(gnutls_session_int *session, unsigned status, const QString &host)
{
    const Certificate certificate = serverCertificate(session);
    if (!certificate)
        return QStringLiteral("The server showed a certificate that cannot be read.");
    if (status == 0)
        return purposeText(certificate.get());
    if (status & GNUTLS_CERT_REVOKED)
        return QStringLiteral(
            "The server's certificate was revoked. Do not connect until the server has a new one.");
    if (status & (GNUTLS_CERT_SIGNER_NOT_FOUND | GNUTLS_CERT_SIGNER_NOT_CA))
        return KNFormat(
            "The server's certificate is signed by an authority that is not trusted here: %@. Get "
            "that authority's certificate, or the server's own if it signed itself, and name it as "
            "the trusted certificate file; or choose to trust any server certificate, if nobody "
            "can come between you and the server.",
            issuerOf(certificate.get()));
    if (status & GNUTLS_CERT_SIGNATURE_FAILURE)
        return KNFormat(
            "The server's certificate names the authority %@, and is not signed by the one of that "
            "name that is trusted here. If the authority has a new certificate, name that as the "
            "trusted certificate file; otherwise this is not the server it says it is.",
            issuerOf(certificate.get()));
    if (status & GNUTLS_CERT_EXPIRED)
        return KNFormat("The server's certificate was valid until %@. It must be renewed at the server; or "
                        "check this computer's clock.",
                        dateText(gnutls_x509_crt_get_expiration_time(certificate.get())));
    if (status & GNUTLS_CERT_NOT_ACTIVATED)
        return KNFormat("The server's certificate is not valid before %@. Check the clocks of this computer "
                        "and of the server.",
                        dateText(gnutls_x509_crt_get_activation_time(certificate.get())));
    if (status & GNUTLS_CERT_UNEXPECTED_OWNER)
        return KNFormat(
            "The server's certificate is for %@, and not for \"%@\". Connect with a name that the "
            "certificate is for, or turn the check of the host name off if you are sure that this "
            "is the right server.",
            namesOf(certificate.get()).join(QStringLiteral(", ")), host);
    return otherText(status);
}

std::optional<KNServerCertificate> MSSQLTrustableCertificate(gnutls_session_int *session, unsigned status)
{
    constexpr unsigned NeverTrusted = GNUTLS_CERT_REVOKED | GNUTLS_CERT_EXPIRED | GNUTLS_CERT_NOT_ACTIVATED |
                                      GNUTLS_CERT_INSECURE_ALGORITHM;
    const Certificate certificate = serverCertificate(session);
    const QByteArray pem = MSSQLShownCertificate(session);
    if (!certificate || pem.isEmpty() || (status & NeverTrusted) != 0)
        return std::nullopt;
    const auto date = [](time_t time) { return QDateTime::fromSecsSinceEpoch(time, Qt::UTC); };
    return KNServerCertificate{pem, subjectOf(certificate.get()), issuerOf(certificate.get()),
                               date(gnutls_x509_crt_get_activation_time(certificate.get())),
                               date(gnutls_x509_crt_get_expiration_time(certificate.get()))};
}

QByteArray MSSQLShownCertificate(gnutls_session_int *session)
{
    unsigned count = 0;
    const gnutls_datum_t *const chain = gnutls_certificate_get_peers(session, &count);
    gnutls_datum_t pem = {};
    if (count == 0 || gnutls_pem_base64_encode2("CERTIFICATE", &chain[0], &pem) != GNUTLS_E_SUCCESS)
        return QByteArray();
    const QByteArray text(reinterpret_cast<const char *>(pem.data), static_cast<qsizetype>(pem.size));
    gnutls_free(pem.data);
    return text;
}
