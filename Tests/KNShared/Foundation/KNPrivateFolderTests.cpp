#include "Foundation/KNPrivateFolder.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

mode_t folderMode(const QString &path)
{
    struct stat status
    {
    };
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
}

} // namespace

TEST(KNPrivateFolder, IsMadeForTheUserAloneWithAllThatIsMissingAboveIt)
{
    const QTemporaryDir base;
    const QString folder = base.filePath(QStringLiteral("one/two/three"));
    ASSERT_TRUE(KNMakePrivateFolder(folder));
    EXPECT_EQ(folderMode(folder), 0700U);
    EXPECT_EQ(folderMode(base.filePath(QStringLiteral("one"))), 0700U);
}

TEST(KNPrivateFolder, LeavesAnExistingFolderAsItIs)
{
    const QTemporaryDir base;
    const QString folder = base.filePath(QStringLiteral("shared"));
    ASSERT_EQ(mkdir(QFile::encodeName(folder).constData(), 0755), 0);
    ASSERT_EQ(chmod(QFile::encodeName(folder).constData(), 0755), 0);
    EXPECT_TRUE(KNMakePrivateFolder(folder + u'/'));
    EXPECT_EQ(folderMode(folder), 0755U);
}

TEST(KNPrivateFolder, FailsBelowAFile)
{
    const QTemporaryDir base;
    QFile file(base.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_FALSE(KNMakePrivateFolder(file.fileName()));
    EXPECT_FALSE(KNMakePrivateFolder(file.fileName() + QStringLiteral("/below")));
}
