#pragma once

#include <QString>

struct gnutls_session_int;

/// What is wrong with the certificate that a server has shown, and what to do about it; null when its
/// verification gave no fault. `status` is what gnutls_certificate_verify_peers3() gave for `host`.
QString MSSQLCertificateText(gnutls_session_int *session, unsigned status, const QString &host);
