#pragma once

#include <QString>

struct gnutls_session_int;

/// Describes what is wrong with a server's certificate, and a remedy; null if its verification succeeded and
/// it may be used for servers (RFC 5280 4.2.1.12: an extended key usage, if present, must include server
/// authentication). `status` is the result of gnutls_certificate_verify_peers3() for `host`.
QString MSSQLCertificateText(gnutls_session_int *session, unsigned status, const QString &host);
