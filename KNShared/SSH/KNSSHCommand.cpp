#include "SSH/KNSSHCommand.h"

#include "Foundation/KNFormat.h"
#include "SSH/KNSSHHostKey.h"

#include <QDir>

const QString KNSSHCommand::ErrorDomain = QStringLiteral("com.quorvex.vantor.ssh");

namespace {

void addOption(QStringList &arguments, const QString &option)
{
    arguments << QStringLiteral("-o") << option;
}

/// Arguments for all runs, which must not become part of the user's own sessions.
QStringList commonArguments(const KNSSHTunnelModel &model)
{
    QStringList arguments;
    for (const char *option : {"ControlMaster=no", "ControlPath=none", "ControlPersist=no",
                               "ForkAfterAuthentication=no", "UpdateHostKeys=no", "CheckHostIP=no",
                               "RequestTTY=no", "RemoteCommand=none", "ForwardAgent=no", "ForwardX11=no"})
        addOption(arguments, QString::fromLatin1(option));
    if (model.port != 0)
        arguments << QStringLiteral("-p") << QString::number(model.port);
    if (!model.username.isEmpty())
        arguments << QStringLiteral("-l") << model.username;
    return arguments;
}

/// Quotes a path for an option that takes a list of files.
QString quoted(const QString &path)
{
    return QLatin1Char('"') + path + QLatin1Char('"');
}

} // namespace

QStringList KNSSHCommand::toForward(const KNSSHTunnelModel &model, quint16 localPort, const QString &host,
                                    quint16 port, int timeoutSeconds)
{
    QStringList arguments = commonArguments(model);
    // The only questions are those for a key's passphrase, once each (KNSSHAskPass).
    for (const char *const option : {"BatchMode=no", "PasswordAuthentication=no",
                                     "KbdInteractiveAuthentication=no", "NumberOfPasswordPrompts=1"})
        addOption(arguments, QString::fromLatin1(option));
    addOption(arguments, QStringLiteral("StrictHostKeyChecking=yes"));
    addOption(arguments, KNFormat("UserKnownHostsFile=%@ ~/.ssh/known_hosts ~/.ssh/known_hosts2",
                                  quoted(KNSSHHostKey::knownHostsFile())));
    addOption(arguments, QStringLiteral("ExitOnForwardFailure=yes"));
    addOption(arguments, KNFormat("ConnectTimeout=%d", timeoutSeconds));
    // Detects a lost server within a minute.
    addOption(arguments, QStringLiteral("ServerAliveInterval=20"));
    addOption(arguments, QStringLiteral("ServerAliveCountMax=3"));
    // The command runs once the user is logged in and the port is bound.
    addOption(arguments, QStringLiteral("PermitLocalCommand=yes"));
    addOption(arguments, KNFormat("LocalCommand=echo %@", ReadyText));
    if (!model.keyFile.isEmpty()) {
        arguments << QStringLiteral("-i") << model.keyFile;
        addOption(arguments, QStringLiteral("IdentitiesOnly=yes"));
    }
    const QString target = host.contains(QLatin1Char(':')) ? KNFormat("[%@]", host) : host;
    arguments << QStringLiteral("-N") << QStringLiteral("-L")
              << KNFormat("127.0.0.1:%d:%@:%d", localPort, target, port);
    return arguments << QStringLiteral("--") << model.host;
}

QStringList KNSSHCommand::toLearnTheHostKey(const KNSSHTunnelModel &model, const QString &knownHostsFile)
{
    QStringList arguments = commonArguments(model);
    addOption(arguments, QStringLiteral("BatchMode=yes"));
    addOption(arguments, QStringLiteral("StrictHostKeyChecking=accept-new"));
    addOption(arguments, KNFormat("UserKnownHostsFile=%@", quoted(knownHostsFile)));
    addOption(arguments, QStringLiteral("GlobalKnownHostsFile=/dev/null"));
    addOption(arguments, QStringLiteral("HashKnownHosts=no"));
    addOption(arguments, QStringLiteral("PreferredAuthentications=none"));
    return arguments << QStringLiteral("-N") << QStringLiteral("--") << model.host;
}

KNError KNSSHCommand::errorFor(const KNSSHTunnelModel &model, const QString &complaints)
{
    const auto complainsOf = [&](const char *text) { return complaints.contains(QLatin1String(text)); };
    if (complainsOf("REMOTE HOST IDENTIFICATION HAS CHANGED"))
        return KNError(
            ErrorDomain, ChangedHostKey,
            KNFormat("The SSH server %@ has another key than the one that is known. Someone may be "
                     "pretending to be it. If its key was changed on purpose, remove the old one "
                     "from %@ or ~/.ssh/known_hosts.",
                     model.host, QDir::toNativeSeparators(KNSSHHostKey::knownHostsFile())));
    if (complainsOf("Host key verification failed"))
        return KNError(ErrorDomain, UnknownHost,
                       KNFormat("The SSH server %@ is not known yet, and did not give its key.", model.host));
    if (complainsOf("Permission denied") || complainsOf("Too many authentication failures"))
        return KNError(ErrorDomain, NotLetIn,
                       KNFormat("The SSH server %@ accepts none of the keys that it was offered. Use a key "
                                "without a passphrase, or add the key to the SSH agent. (%@)",
                                model.host, complaints));
    return KNError(
        ErrorDomain, Failed,
        KNFormat("The SSH tunnel through %@ could not be opened: %@", model.host,
                 complaints.isEmpty() ? QStringLiteral("ssh ended without a message.") : complaints));
}
