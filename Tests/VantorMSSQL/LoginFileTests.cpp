#include "Implementations/MSSQLLoginFile.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/stat.h>

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

TEST(LoginFile, IsTheUsersAloneAndGoesWithItsObject)
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
