#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"
#include "SSH/KNSSHTunnelModel.h"

#include <QDeadlineTimer>
#include <QStringList>

#include <optional>

/// The host key of an SSH server that is not known yet.
class KNSHARED_EXPORT KNSSHHostKey
{
public:
    /// Parses a line of a known-hosts file; empty if it is invalid.
    static std::optional<KNSSHHostKey> fromKnownHostsLine(const QString &line);
    /// The key in an unknown-host error; empty for other errors.
    static std::optional<KNSSHHostKey> fromError(const KNError &error);
    /// Requests the server's key without logging in. Empty if the server does not send one. Blocks until the
    /// deadline at most; any thread.
    static std::optional<KNSSHHostKey> ask(const KNSSHTunnelModel &model, const QDeadlineTimer &deadline);

    QString host() const { return m_host; } ///< including its port if that is not 22
    QString type() const { return m_type; } ///< "ED25519"
    /// The fingerprint in ssh's format: "SHA256:...".
    QString fingerprint() const { return m_fingerprint; }
    /// Creates an error that contains the key.
    KNError unknownHostError() const;
    /// Adds the key to the known hosts; false with an error if the file cannot be written.
    bool accept(KNError *error) const;

    /// The file with keys accepted by users of this program; ssh reads it in addition to the user's own.
    static QString knownHostsFile();

private:
    QString m_host;
    QString m_type;
    QString m_fingerprint;
    QString m_line;
};
