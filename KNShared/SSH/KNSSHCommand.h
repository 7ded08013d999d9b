#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"
#include "SSH/KNSSHTunnelModel.h"

#include <QStringList>

/// How the system's `ssh` is called. Everything that the user has configured for it holds, except for what
/// would make it ask, or do more than it is called for. Nothing secret is among the arguments.
namespace KNSSHCommand {

KNSHARED_EXPORT extern const QString ErrorDomain;
/// Codes of its errors.
enum Problem {
    UnknownHost = 1, ///< the error carries the host's key: KNSSHHostKey::fromError()
    ChangedHostKey,
    NotLetIn, ///< no key of the user's is accepted
    Failed,
};

/// What ssh writes to its standard output once the tunnel can be used, and a line end.
constexpr const char *ReadyText = "tunnel-is-open";

/// To forward `localPort` of the loopback to a host and port as the SSH server sees them.
KNSHARED_EXPORT QStringList toForward(const KNSSHTunnelModel &model, quint16 localPort, const QString &host,
                                      quint16 port, int timeoutSeconds);
/// To have the server's key written into the file, and nothing else.
KNSHARED_EXPORT QStringList toLearnTheHostKey(const KNSSHTunnelModel &model, const QString &knownHostsFile);
/// The error that its complaints mean; without the key of an unknown host.
KNSHARED_EXPORT KNError errorFor(const KNSSHTunnelModel &model, const QString &complaints);

} // namespace KNSSHCommand
