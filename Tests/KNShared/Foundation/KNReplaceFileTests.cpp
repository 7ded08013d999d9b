#include "Foundation/KNReplaceFile.h"
#include "Support/FullDisk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray fileContent(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

/// Fills the file system that `folder` is on.
void fillUp(const QString &folder)
{
    const QByteArray path = QFile::encodeName(folder + QStringLiteral("/filler"));
    const int file = open(path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const QByteArray block(4096, 'x');
    while (write(file, block.constData(), static_cast<size_t>(block.size())) > 0) {
    }
    close(file);
}

/// Runs `work` on a thread that sees a small file system of its own mounted on `folder`; false where that is
/// not allowed.
bool onSmallFileSystem(const QString &folder, const std::function<void()> &work)
{
    bool allowed = false;
    std::thread([&] {
        allowed = unshare(CLONE_NEWNS) == 0 &&
                  mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                  mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, "size=256k") == 0;
        if (allowed)
            work();
    }).join();
    return allowed;
}

const int Sizes[] = {1, 336, 16383, 16384, 16385, 1'000'000};

} // namespace

TEST(ReplacedFile, KeepsItsOldContentOnAFullDisk)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    const bool allowed = onSmallFileSystem(folder.path(), [&] {
        ASSERT_TRUE(KNReplaceFile(path, "old"));
        fillUp(folder.path());
        for (const int size : Sizes) {
            SCOPED_TRACE(size);
            QString why;
            EXPECT_FALSE(KNReplaceFile(path, QByteArray(size, 'x'), &why));
            EXPECT_EQ(why, QStringLiteral("No space left on device"));
            EXPECT_EQ(fileContent(path), "old");
        }
        QFile::remove(folder.filePath(QStringLiteral("filler")));
        EXPECT_TRUE(KNReplaceFile(path, "new"));
        EXPECT_EQ(fileContent(path), "new");
    });
    if (!allowed)
        GTEST_SKIP() << "A file system of its own may not be mounted here.";
}

TEST(ReplacedFile, KeepsItsOldContentWhenItMayNotGrow)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    ASSERT_TRUE(KNReplaceFile(path, "old"));
    for (const int size : Sizes) {
        SCOPED_TRACE(size);
        QString why;
        {
            const FullDisk disk;
            EXPECT_FALSE(KNReplaceFile(path, QByteArray(size, 'x'), &why));
        }
        EXPECT_EQ(why, QStringLiteral("File too large"));
        EXPECT_EQ(fileContent(path), "old");
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("file")});
}

TEST(ReplacedFile, HasThePermissionsOfTheOldOneUnlessOthersAreGiven)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    ASSERT_TRUE(KNReplaceFile(path, "old"));
    const QByteArray name = QFile::encodeName(path);
    ASSERT_EQ(chmod(name.constData(), 0640), 0);
    ASSERT_TRUE(KNReplaceFile(path, "new"));
    struct stat status = {};
    ASSERT_EQ(stat(name.constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
    ASSERT_TRUE(KNReplaceFile(path, "new", nullptr, QFile::ReadOwner | QFile::WriteOwner));
    ASSERT_EQ(stat(name.constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST(ReplacedFile, LeavesASymbolicLinkInPlace)
{
    const QTemporaryDir folder;
    const QString target = folder.filePath(QStringLiteral("target"));
    const QString link = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(KNReplaceFile(target, "old"));
    ASSERT_TRUE(QFile::link(target, link));
    ASSERT_TRUE(KNReplaceFile(link, "new"));
    EXPECT_EQ(fileContent(target), "new");
    EXPECT_TRUE(QFileInfo(link).isSymLink());
}
