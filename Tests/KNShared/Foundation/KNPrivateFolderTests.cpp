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

TEST(KNPrivateFile, IsReplacedWholeAndReadableByItsUserOnly)
{
    const QTemporaryDir base;
    const QString path = base.filePath(QStringLiteral("one/two/file"));
    const auto contentOf = [&] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    };
    EXPECT_TRUE(KNReplacePrivateFile(path, "first"));
    EXPECT_EQ(contentOf(), "first");
    EXPECT_EQ(folderMode(path), 0600U);
    EXPECT_EQ(folderMode(base.filePath(QStringLiteral("one/two"))), 0700U);
    EXPECT_TRUE(KNReplacePrivateFile(path, "2"));
    EXPECT_EQ(contentOf(), "2");
}

TEST(KNPrivateFile, ReportsWriteFailure)
{
    const QTemporaryDir base;
    const QString file = base.filePath(QStringLiteral("file"));
    ASSERT_TRUE(KNReplacePrivateFile(file, "is no folder"));
    QString why;
    EXPECT_FALSE(KNReplacePrivateFile(file + QStringLiteral("/below"), "x", &why));
    EXPECT_TRUE(why.contains(file)) << why.toStdString();
    EXPECT_FALSE(KNReplacePrivateFile(base.path(), "x", &why)) << "a folder is in the way";
    EXPECT_FALSE(why.isEmpty());
}

TEST(KNStateFolder, IsTheOneOfTheEnvironmentOnlyWhereThatIsAbsolute)
{
    const QByteArray before = qgetenv("XDG_STATE_HOME");
    qputenv("XDG_STATE_HOME", "/somewhere/else");
    EXPECT_EQ(KNStateFolder(), QStringLiteral("/somewhere/else"));
    qputenv("XDG_STATE_HOME", "not/absolute");
    EXPECT_TRUE(KNStateFolder().endsWith(QStringLiteral("/.local/state")));
    qputenv("XDG_STATE_HOME", before);
}
