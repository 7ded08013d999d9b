#include "SSH/KNSSHHostKey.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNPrivateFolder.h"
#include "SSH/KNSSHCommand.h"
#include "SSH/KNSSHProcess.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace {

const QString LineKey = QStringLiteral("com.quorvex.vantor.ssh.knownHostsLine");

/// The display name of a type such as "ssh-ed25519".
QString nameOfType(const QString &type)
{
    if (type == QLatin1String("ssh-ed25519"))
        return QStringLiteral("ED25519");
    if (type == QLatin1String("ssh-rsa"))
        return QStringLiteral("RSA");
    if (type.startsWith(QLatin1String("ecdsa-")))
        return QStringLiteral("ECDSA");
    return type;
}

} // namespace

std::optional<KNSSHHostKey> KNSSHHostKey::fromKnownHostsLine(const QString &line)
{
    const QStringList fields = line.simplified().split(QLatin1Char(' '));
    if (fields.size() < 3 || fields.first().startsWith(QLatin1Char('#')))
        return std::nullopt;
    const auto blob =
        QByteArray::fromBase64Encoding(fields.at(2).toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!blob || (*blob).isEmpty())
        return std::nullopt;
    KNSSHHostKey key;
    key.m_host = fields.at(0);
    key.m_type = nameOfType(fields.at(1));
    key.m_fingerprint = QStringLiteral("SHA256:") +
                        QString::fromLatin1(QCryptographicHash::hash(*blob, QCryptographicHash::Sha256)
                                                .toBase64(QByteArray::OmitTrailingEquals));
    key.m_line = fields.join(QLatin1Char(' '));
    return key;
}

std::optional<KNSSHHostKey> KNSSHHostKey::fromError(const KNError &error)
{
    return fromKnownHostsLine(error.userInfo().value(LineKey).toString());
}

std::optional<KNSSHHostKey> KNSSHHostKey::ask(const KNSSHTunnelModel &model, const QDeadlineTimer &deadline)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("known_hosts"));
    {
        KNSSHProcess process(KNSSHCommand::toLearnTheHostKey(model, file));
        KNSSHProcess::Event event = KNSSHProcess::Event::Output;
        while (event == KNSSHProcess::Event::Output || event == KNSSHProcess::Event::Complaint)
            event = process.wait(-1, deadline);
    }
    QFile learned(file);
    if (!folder.isValid() || !learned.open(QIODevice::ReadOnly))
        return std::nullopt;
    return fromKnownHostsLine(QString::fromLatin1(learned.readLine()));
}

KNError KNSSHHostKey::unknownHostError() const
{
    return KNError(KNSSHCommand::ErrorDomain, KNSSHCommand::UnknownHost,
                   KNFormat("The SSH server %@ is not known yet. Its %@ key has the fingerprint %@.", m_host,
                            m_type, m_fingerprint),
                   {{LineKey, m_line}});
}

bool KNSSHHostKey::accept(KNError *error) const
{
    QFile file(knownHostsFile());
    const QByteArray line = m_line.toLatin1() + '\n';
    if (KNMakePrivateFolder(QFileInfo(file.fileName()).path()) &&
        file.open(QIODevice::WriteOnly | QIODevice::Append) &&
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) && file.write(line) == line.size() &&
        file.flush())
        return true;
    *error =
        KNError(KNSSHCommand::ErrorDomain, KNSSHCommand::Failed,
                KNFormat("The key could not be added to \"%@\": %@.", file.fileName(), file.errorString()));
    return false;
}

QString KNSSHHostKey::knownHostsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/vantor/ssh_known_hosts");
}
