#pragma once

#include <QByteArray>

struct MSSQLEncryption;
struct MSSQLServerAddress;

/// Caches, for a minute, the certificates that the connector has verified in its own handshake, so that the
/// next login needs no such handshake. Thread-safe.
namespace MSSQLVerifiedCertificates {

/// PEM; empty if none was verified with these settings within the last minute.
QByteArray find(const MSSQLServerAddress &server, const MSSQLEncryption &encryption);
void remember(const MSSQLServerAddress &server, const MSSQLEncryption &encryption,
              const QByteArray &certificate);
void forget(const MSSQLServerAddress &server, const MSSQLEncryption &encryption);

} // namespace MSSQLVerifiedCertificates
