#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"
#include "SSH/KNSSHTunnelModel.h"

#include <QStringList>

/// Builds the arguments of the system's `ssh` and interprets its errors. The user's ssh configuration
/// applies, except for settings that would prompt or do more than requested. The arguments contain no
/// secrets.
namespace KNSSHCommand {

KNSHARED_EXPORT extern const QString ErrorDomain;
/// The error codes.
enum Problem {
    UnknownHost = 1, ///< the error contains the host's key: KNSSHHostKey::fromError()
    ChangedHostKey,
    NotLetIn,        ///< the server accepted none of the user's keys
    NeedsPassphrase, ///< of a key; the error contains ssh's prompt: KNSSHPassphrases::promptIn()
    Failed,
};

/// The line that ssh writes to its standard output once the tunnel can be used.
constexpr const char *ReadyText = "tunnel-is-open";

/// Arguments to forward `localPort` on the loopback to a host and port as seen from the SSH server.
KNSHARED_EXPORT QStringList toForward(const KNSSHTunnelModel &model, quint16 localPort, const QString &host,
                                      quint16 port, int timeoutSeconds);
/// Arguments that only write the server's key to the file.
KNSHARED_EXPORT QStringList toLearnTheHostKey(const KNSSHTunnelModel &model, const QString &knownHostsFile);
/// Converts ssh's error output to an error; does not contain the key of an unknown host.
KNSHARED_EXPORT KNError errorFor(const KNSSHTunnelModel &model, const QString &complaints);

} // namespace KNSSHCommand
