#include "Implementations/MSSQLLoginFile.h"

#include "Foundation/KNFormat.h"

#include <QDir>
#include <QFile>

namespace {

constexpr int LongestServerName = 128; ///< that a login may carry

const char *modeName(MSSQLEncryption::Mode mode)
{
    switch (mode) {
    case MSSQLEncryption::Mode::Off:
        return "off";
    case MSSQLEncryption::Mode::Request:
        break;
    case MSSQLEncryption::Mode::Require:
        return "require";
    }
    return "request";
}

/// Writes a file that only the user can read; false when not all of it could be written.
bool writePrivate(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) &&
           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
           file.write(content) == content.size() && file.flush();
}

} // namespace

MSSQLLoginFile::MSSQLLoginFile(const MSSQLServerAddress &server, const MSSQLEncryption &encryption)
    : m_folder(QDir::tempPath() + QStringLiteral("/vantor-login-XXXXXX"))
    , m_entry(KNFormat("port %d on %@", server.port, server.host).left(LongestServerName).toLatin1())
{
    if (!m_folder.isValid())
        return;
    QByteArray text = "[" + m_entry + "]\nhost = " + server.host.toLatin1() +
                      "\nport = " + QByteArray::number(server.port) +
                      "\nencryption = " + modeName(encryption.mode) + '\n';
    const QString trusted = m_folder.filePath(QStringLiteral("trusted.pem"));
    if (!encryption.pinnedCertificate.isEmpty()) {
        if (!writePrivate(trusted, encryption.pinnedCertificate))
            return;
        text += "ca file = " + QFile::encodeName(trusted) + '\n';
    } else if (encryption.verifiesCertificate && encryption.trustedCertificateFile.isNull()) {
        text += "ca file = system\n";
    } else if (encryption.verifiesCertificate) {
        // A link, because db-lib cuts paths that are long or hold certain characters.
        if (!QFile::link(encryption.trustedCertificateFile, trusted))
            return;
        text += "ca file = " + QFile::encodeName(trusted) + '\n';
    }
    text +=
        KNFormat("check certificate hostname = %@\n", encryption.checksHostName ? "yes" : "no").toLatin1();
    const QString path = m_folder.filePath(QStringLiteral("freetds.conf"));
    if (writePrivate(path, text))
        m_path = QFile::encodeName(path);
}
