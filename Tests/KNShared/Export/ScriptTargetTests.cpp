#include "Export/KNScriptTarget.h"

#include "Export/KNScriptOptions.h"
#include "Support/FullDisk.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <zip.h>

namespace ScriptTargetTests {

namespace {

using Kind = KNScriptTarget::Kind;

/// Bytes that do not become much smaller.
QByteArray noise(qsizetype size)
{
    QRandomGenerator generator(1);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = static_cast<char>(generator.generate());
    return bytes;
}

class ScriptTarget : public testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    /// Writes each text into the file with the name before it.
    KNError write(Kind kind, const QString &path, const QList<std::pair<const char *, QByteArray>> &texts)
    {
        const auto target = KNScriptTarget::create(kind, path);
        KNError error;
        for (const auto &[name, text] : texts) {
            QIODevice *const device = target->deviceFor(QString::fromUtf8(name), &error);
            if (!device)
                return error;
            device->write(text);
        }
        return target->commit();
    }
    static QByteArray content(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// The content that gzip reads from a file.
    static QByteArray unzipped(const QString &path)
    {
        QProcess gzip;
        gzip.start(QStringLiteral("gzip"), {QStringLiteral("-dc"), path});
        EXPECT_TRUE(gzip.waitForFinished());
        EXPECT_EQ(gzip.exitCode(), 0) << gzip.readAllStandardError().toStdString();
        return gzip.readAllStandardOutput();
    }
    static QByteArray partOf(const QString &path, const char *name)
    {
        int code = 0;
        zip *const archive = zip_open(path.toUtf8().constData(), ZIP_RDONLY, &code);
        EXPECT_NE(archive, nullptr) << code;
        zip_file *const part = archive ? zip_fopen(archive, name, 0) : nullptr;
        EXPECT_NE(part, nullptr) << name;
        QByteArray bytes(2 << 20, '\0');
        const zip_int64_t size =
            part ? zip_fread(part, bytes.data(), static_cast<zip_uint64_t>(bytes.size())) : 0;
        EXPECT_EQ(part ? zip_fclose(part) : -1, 0) << name;
        zip_discard(archive);
        return bytes.left(size);
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ScriptTarget, WritesAFileThatGzipReads)
{
    const QByteArray large = noise(1'500'000) + QByteArray(3'000'000, 'a');
    EXPECT_FALSE(write(Kind::GzipFile, path("a.sql.gz"), {{"", "one\n"}, {"", large}}));
    EXPECT_EQ(unzipped(path("a.sql.gz")), "one\n" + large);
    EXPECT_LT(QFile(path("a.sql.gz")).size(), 1'600'000);
    EXPECT_FALSE(write(Kind::GzipFile, path("empty.sql.gz"), {{"", ""}}));
    EXPECT_EQ(unzipped(path("empty.sql.gz")), "");
}

TEST_F(ScriptTarget, WritesAZipFileWithNamesInUnicode)
{
    const QByteArray large = noise(1'500'000);
    EXPECT_FALSE(write(Kind::ZipFile, path("a.zip"),
                       {{"dbo.Zoë.sql", "one\n"}, {"dbo.Zoë.sql", "two\n"}, {"large.sql", large}}));
    EXPECT_EQ(partOf(path("a.zip"), "dbo.Zoë.sql"), "one\ntwo\n");
    EXPECT_EQ(partOf(path("a.zip"), "large.sql"), large);
}

TEST_F(ScriptTarget, ReportsAFullDiskAndLeavesTheOldFile)
{
    // The small one fits into the buffers.
    for (const auto &[kind, size] : {std::pair(Kind::File, 2'000), std::pair(Kind::File, 500'000),
                                     std::pair(Kind::GzipFile, 2'000), std::pair(Kind::GzipFile, 500'000),
                                     std::pair(Kind::ZipFile, 2'000), std::pair(Kind::ZipFile, 500'000)}) {
        QFile old(path("old"));
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old");
        old.close();
        KNError error;
        {
            const FullDisk full(1000);
            error = write(kind, path("old"), {{"a.sql", noise(size)}});
        }
        EXPECT_TRUE(error.localizedDescription().contains(path("old"))) << static_cast<int>(kind);
        EXPECT_EQ(content(path("old")), "old") << static_cast<int>(kind);
    }
}

TEST_F(ScriptTarget, ReportsAFullDiskForAFolder)
{
    const FullDisk full(1000);
    EXPECT_TRUE(write(Kind::Folder, path("scripts"), {{"a.sql", noise(2'000)}}));
    EXPECT_TRUE(write(Kind::Folder, path("scripts"), {{"a.sql", noise(500'000)}, {"b.sql", "b"}}));
    EXPECT_FALSE(QFile::exists(path("scripts/a.sql")));
}

TEST_F(ScriptTarget, IsChosenByThePath)
{
    EXPECT_EQ(KNScriptTarget::kindFor(path("a.sql")), Kind::File);
    EXPECT_EQ(KNScriptTarget::kindFor({}), Kind::File);
    EXPECT_EQ(KNScriptTarget::kindFor(path("a.sql.GZ")), Kind::GzipFile);
    EXPECT_EQ(KNScriptTarget::kindFor(path("a.zip")), Kind::ZipFile);
    EXPECT_EQ(KNScriptTarget::kindFor(path("scripts/")), Kind::Folder);
    EXPECT_EQ(KNScriptTarget::kindFor(m_folder.path()), Kind::Folder);
}

TEST(ScriptOptions, SayWhichSwitchesHaveNoEffect)
{
    KNScriptOptions options;
    EXPECT_TRUE(options.reasonAgainst(&KNScriptOptions::drops).isNull());
    EXPECT_TRUE(options.reasonAgainst(&KNScriptOptions::ifNotExists).isNull());
    options.drops = true;
    EXPECT_FALSE(options.reasonAgainst(&KNScriptOptions::ifNotExists).isNull());
    options.language = KNScriptOptions::Language::MySQL;
    EXPECT_TRUE(options.reasonAgainst(&KNScriptOptions::drops).isNull());
    EXPECT_FALSE(options.reasonAgainst(&KNScriptOptions::triggers).isNull());
    options.schema = false;
    EXPECT_FALSE(options.reasonAgainst(&KNScriptOptions::drops).isNull());
    EXPECT_TRUE(options.reasonAgainst(&KNScriptOptions::data).isNull());
}

} // namespace ScriptTargetTests
