#include "Implementations/MSSQLLoginFile.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QByteArray contentOf(const MSSQLLoginFile &login)
{
    QFile file(QFile::decodeName(login.path()));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

unsigned modeOf(const QByteArray &path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.constData(), &status), 0);
    return status.st_mode & 07777;
}

MSSQLEncryption required()
{
    MSSQLEncryption encryption;
    encryption.mode = MSSQLEncryption::Mode::Require;
    encryption.verifiesCertificate = true;
    encryption.checksHostName = true;
    return encryption;
}

} // namespace

TEST(LoginFile, HoldsOneEntryWithTheServerAndItsEncryption)
{
    const MSSQLLoginFile login({QStringLiteral("sql.example"), 1500}, required());
    EXPECT_EQ(login.entry(), "port 1500 on sql.example");
    EXPECT_EQ(contentOf(login), "[port 1500 on sql.example]\nhost = sql.example\nport = 1500\n"
                                "encryption = require\nca file = system\ncheck certificate hostname = yes\n");
    const MSSQLLoginFile plain({QStringLiteral("127.0.0.1"), 1433}, MSSQLEncryption());
    EXPECT_EQ(contentOf(plain), "[port 1433 on 127.0.0.1]\nhost = 127.0.0.1\nport = 1433\n"
                                "encryption = request\ncheck certificate hostname = no\n");
}

TEST(LoginFile, IsPrivateAndRemovedWithObject)
{
    const mode_t oldMask = umask(0);
    QByteArray path;
    {
        const MSSQLLoginFile login({QStringLiteral("srv"), 1433}, required());
        path = login.path();
        EXPECT_EQ(modeOf(path), 0600U);
        EXPECT_EQ(modeOf(path.left(path.lastIndexOf('/'))), 0700U);
    }
    umask(oldMask);
    EXPECT_FALSE(QFileInfo::exists(QFile::decodeName(path)));
    EXPECT_FALSE(QFileInfo::exists(QFile::decodeName(path.left(path.lastIndexOf('/')))));
}

TEST(LoginFile, LeadsToTheTrustedCertificatesWithoutTheirPath)
{
    const QTemporaryDir folder;
    MSSQLEncryption encryption = required();
    encryption.trustedCertificateFile = folder.filePath(QStringLiteral("an # odd ; name.pem"));
    QFile file(encryption.trustedCertificateFile);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("certificates");
    file.close();
    const MSSQLLoginFile login({QStringLiteral("srv"), 1433}, encryption);
    const QByteArray content = contentOf(login);
    const qsizetype start = content.indexOf("ca file = ") + 10;
    QFile link(QFile::decodeName(content.mid(start, content.indexOf('\n', start) - start)));
    ASSERT_TRUE(link.open(QIODevice::ReadOnly));
    EXPECT_EQ(link.readAll(), "certificates");
    EXPECT_FALSE(content.contains("odd"));
}

TEST(LoginFile, CutsAnEntryThatIsTooLongForALogin)
{
    const QString host(230, QLatin1Char('h'));
    const MSSQLLoginFile login({host, 1433}, required());
    EXPECT_EQ(login.entry().size(), 128);
    EXPECT_TRUE(contentOf(login).contains("host = " + host.toLatin1() + '\n'));
}

namespace {

/// Sends the folders of logins to a folder of a test's own.
class TemporaryFolder
{
public:
    TemporaryFolder() { qputenv("TMPDIR", QFile::encodeName(m_folder.path())); }
    ~TemporaryFolder() { qunsetenv("TMPDIR"); }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QStringList logins() const
    {
        return QDir(m_folder.path()).entryList({QStringLiteral("vantor-login-*")}, QDir::AllEntries);
    }

private:
    const QTemporaryDir m_folder;
};

void writeFile(const QString &path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("text");
}

} // namespace

TEST(LoginFile, RemovesFilesOfKilledProcessesOnly)
{
    const TemporaryFolder folder;
    const MSSQLLoginFile ours({QStringLiteral("srv"), 1433}, required());
    int pipeEnds[2];
    ASSERT_EQ(pipe(pipeEnds), 0);
    const pid_t process = fork();
    if (process == 0) {
        const MSSQLLoginFile theirs({QStringLiteral("srv"), 1433}, required());
        const char isWritten = theirs.path().isEmpty() ? 'n' : 'y';
        if (write(pipeEnds[1], &isWritten, 1) == 1)
            pause();
        _exit(1);
    }
    char isWritten = 0;
    ASSERT_EQ(read(pipeEnds[0], &isWritten, 1), 1);
    ASSERT_EQ(isWritten, 'y');
    MSSQLLoginFile::removeAbandoned();
    EXPECT_EQ(folder.logins().size(), 2) << "both processes live";
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    EXPECT_EQ(folder.logins().size(), 2);
    MSSQLLoginFile::removeAbandoned();
    EXPECT_EQ(folder.logins().size(), 1);
    EXPECT_FALSE(contentOf(ours).isEmpty());
    close(pipeEnds[0]);
    close(pipeEnds[1]);
}

TEST(LoginFile, DoesNotFollowLinksOrRemoveForeignFiles)
{
    const TemporaryFolder folder;
    ASSERT_TRUE(QDir().mkpath(folder.path("elsewhere")));
    writeFile(folder.path("elsewhere/freetds.conf"));
    ASSERT_TRUE(QFile::link(folder.path("elsewhere"), folder.path("vantor-login-link")));
    ASSERT_TRUE(QDir().mkpath(folder.path("vantor-login-mixed")));
    writeFile(folder.path("vantor-login-mixed/notes.txt"));
    ASSERT_TRUE(QDir().mkpath(folder.path("vantor-login-linked")));
    ASSERT_TRUE(
        QFile::link(folder.path("elsewhere/freetds.conf"), folder.path("vantor-login-linked/trusted.pem")));
    ASSERT_TRUE(QDir().mkpath(folder.path("vantor-login-new")));
    MSSQLLoginFile::removeAbandoned();
    EXPECT_TRUE(QFile::exists(folder.path("elsewhere/freetds.conf")));
    EXPECT_TRUE(QFile::exists(folder.path("vantor-login-mixed/notes.txt")));
    EXPECT_TRUE(QFileInfo(folder.path("vantor-login-link")).isSymLink());
    EXPECT_FALSE(QFile::exists(folder.path("vantor-login-linked")));
    EXPECT_TRUE(QFile::exists(folder.path("vantor-login-new"))) << "its process may be about to lock it";
}
