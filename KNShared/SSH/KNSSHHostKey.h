#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"
#include "SSH/KNSSHTunnelModel.h"

#include <QDeadlineTimer>
#include <QStringList>

#include <optional>

/// The key by which an SSH server proves who it is, and that nobody has vouched for yet.
class KNSHARED_EXPORT KNSSHHostKey
{
public:
    /// Reads a line of a file of known hosts; empty when it is none.
    static std::optional<KNSSHHostKey> fromKnownHostsLine(const QString &line);
    /// The key in an error that says that a server is unknown; empty for other errors.
    static std::optional<KNSSHHostKey> fromError(const KNError &error);
    /// Asks the server for its key, without logging in. Empty when it does not give one. Blocks until the
    /// deadline at most; any thread.
    static std::optional<KNSSHHostKey> ask(const KNSSHTunnelModel &model, const QDeadlineTimer &deadline);

    QString host() const { return m_host; } ///< with its port, where that is not 22
    QString type() const { return m_type; } ///< "ED25519"
    /// As ssh shows it: "SHA256:...".
    QString fingerprint() const { return m_fingerprint; }
    /// An error that carries the key.
    KNError unknownHostError() const;
    /// Adds the key to those that are known; false with an error when the file cannot be written.
    bool accept(KNError *error) const;

    /// The keys that users of this program have accepted; ssh reads them beside the user's own.
    static QString knownHostsFile();

private:
    QString m_host;
    QString m_type;
    QString m_fingerprint;
    QString m_line;
};
