#pragma once

#include <QString>

struct gnutls_session_int;

/// What is wrong with the certificate that a server has shown, and what to do about it; null when its
/// verification gave no fault and it may be used for servers (RFC 5280 4.2.1.12: an extended key usage, where
/// there is one, must include server authentication). `status` is what gnutls_certificate_verify_peers3()
/// gave for `host`.
QString MSSQLCertificateText(gnutls_session_int *session, unsigned status, const QString &host);
