#pragma once

#include <QByteArray>

struct MSSQLEncryption;
struct MSSQLServerAddress;

/// The certificates that servers have shown in a handshake of our own and that were in order, for a minute:
/// the next login needs no such handshake. Thread-safe.
namespace MSSQLVerifiedCertificates {

/// PEM; empty when none was verified under these settings within the last minute.
QByteArray find(const MSSQLServerAddress &server, const MSSQLEncryption &encryption);
void remember(const MSSQLServerAddress &server, const MSSQLEncryption &encryption,
              const QByteArray &certificate);
void forget(const MSSQLServerAddress &server, const MSSQLEncryption &encryption);

} // namespace MSSQLVerifiedCertificates
