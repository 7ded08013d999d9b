#include "Implementations/MSSQLLoginFile.h"

#include "Foundation/KNFormat.h"

#include <QDir>
#include <QFile>

#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int LongestServerName = 128; ///< maximum length in a login
const QString FolderPrefix = QStringLiteral("vantor-login-");
constexpr char ConfigurationName[] = "freetds.conf";
constexpr char TrustedName[] = "trusted.pem";

/// Opens and locks a folder; -1 if it is a link, is locked by another process, or cannot be opened.
int lockFolder(const QString &path)
{
    const int folder =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder >= 0 && ::flock(folder, LOCK_EX | LOCK_NB) == 0)
        return folder;
    if (folder >= 0)
        ::close(folder);
    return -1;
}

/// Empties and removes a locked folder, if it is this user's.
void removeLoginFolder(int folder, const QString &path)
{
    constexpr std::time_t CreationTime = 60; ///< seconds within which a new folder is certainly locked
    struct stat status = {};
    if (::fstat(folder, &status) != 0 || status.st_uid != ::geteuid())
        return;
    bool isUsed = false;
    for (const char *const name : {ConfigurationName, TrustedName})
        isUsed = ::unlinkat(folder, name, 0) == 0 || isUsed;
    if (isUsed || std::time(nullptr) - status.st_mtime > CreationTime)
        ::rmdir(QFile::encodeName(path).constData()); // fails if it contains other files
}

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

/// Writes a file that only the user can read; false if it was not written completely.
bool writePrivate(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) &&
           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
           file.write(content) == content.size() && file.flush();
}

} // namespace

MSSQLLoginFile::MSSQLLoginFile(const MSSQLServerAddress &server, const MSSQLEncryption &encryption)
    : m_folder(QDir::tempPath() + QLatin1Char('/') + FolderPrefix + QStringLiteral("XXXXXX"))
    , m_entry(KNFormat("port %d on %@", server.port, server.host).left(LongestServerName).toLatin1())
{
    if (!m_folder.isValid())
        return;
    m_lock = lockFolder(m_folder.path());
    if (m_lock < 0)
        return;
    QByteArray text = "[" + m_entry + "]\nhost = " + server.host.toLatin1() +
                      "\nport = " + QByteArray::number(server.port) +
                      "\nencryption = " + modeName(encryption.mode) + '\n';
    const QString trusted = m_folder.filePath(QLatin1String(TrustedName));
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
    const QString path = m_folder.filePath(QLatin1String(ConfigurationName));
    if (writePrivate(path, text))
        m_path = QFile::encodeName(path);
}

MSSQLLoginFile::~MSSQLLoginFile()
{
    if (m_lock >= 0)
        ::close(m_lock);
}

void MSSQLLoginFile::removeAbandoned()
{
    const QDir temporary(QDir::tempPath());
    const QStringList names =
        temporary.entryList({FolderPrefix + QLatin1Char('*')}, QDir::Dirs | QDir::Hidden);
    for (const QString &name : names) {
        const QString path = temporary.filePath(name);
        const int folder = lockFolder(path);
        if (folder < 0)
            continue;
        removeLoginFolder(folder, path);
        ::close(folder);
    }
}
