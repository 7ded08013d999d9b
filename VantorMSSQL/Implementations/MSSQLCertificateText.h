#pragma once

#include "Database/KNServerCertificate.h"

struct gnutls_session_int;

/// Describes what is wrong with a server's certificate, and a remedy; null if its verification succeeded and
/// it may be used for servers (RFC 5280 4.2.1.12: an extended key usage, if present, must include server
/// authentication). `status` is the result of gnutls_certificate_verify_peers3() for `host`.
QString MSSQLCertificateText(gnutls_session_int *session, unsigned status, const QString &host);

/// The server's certificate, if the user may decide to trust it although the check gave `status`: not one
/// that was revoked or is not valid now, which the login could not accept either.
std::optional<KNServerCertificate> MSSQLTrustableCertificate(gnutls_session_int *session, unsigned status);

/// The certificate that the server showed, as PEM; empty if there is none.
QByteArray MSSQLShownCertificate(gnutls_session_int *session);
