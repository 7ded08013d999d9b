#pragma once

#include <QString>
#include <QTemporaryDir>

#include <sys/types.h>

#include <optional>

/// A real sshd on a free port of 127.0.0.1, run as the current user with keys of its own, and an `ssh` that
/// knows nothing of the user's own configuration. Both are gone with this object.
class SSHServer
{
public:
    /// What client() knows the server as, beside its address and port.
    static constexpr const char *Alias = "gate";

    /// Why no sshd can be run here; null when one can.
    static QString whatIsMissing();

    /// Returns when the server listens; throws std::runtime_error when it does not.
    SSHServer();
    ~SSHServer();
    SSHServer(const SSHServer &) = delete;
    SSHServer &operator=(const SSHServer &) = delete;

    quint16 port() const { return m_port; }
    /// A key that is accepted.
    QString keyFile() const { return m_folder.filePath(QStringLiteral("user_key")); }
    /// A key that is not.
    QString strangersKeyFile() const { return m_folder.filePath(QStringLiteral("strangers_key")); }
    /// "SHA256:..." as ssh-keygen prints it of the server's key.
    QString fingerprint() const;
    /// The program to be used for ssh.
    QString client() const { return m_folder.filePath(QStringLiteral("ssh")); }
    /// Another key for the server, from now on.
    void changeHostKey();
    /// Ends all of its sessions, and listens no more.
    void stop();
    /// Listens again, on the same port.
    void start();

private:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    const QTemporaryDir m_folder;
    quint16 m_port = 0;
    pid_t m_pid = -1;
};
