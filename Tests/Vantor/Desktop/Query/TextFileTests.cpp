#include "Desktop/Query/TextFile.h"
#include "Support/FullDisk.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

class TextFiles : public testing::Test
{
protected:
    QString path(const char *name = "a.sql") const { return folder.filePath(QString::fromLatin1(name)); }
    void put(const QByteArray &content) const
    {
        QFile target(path());
        ASSERT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(content);
    }
    QByteArray bytes() const
    {
        QFile source(path());
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArrayLiteral("(none)");
    }

    QTemporaryDir folder;
    TextFile file;
    QString text;
    KNError error;
};

} // namespace

TEST_F(TextFiles, AreWrittenAsTheyWereRead)
{
    const QByteArray utf16 = QByteArrayLiteral("\xff\xfe"
                                               "a\0\x3d\xd8\x00\xde\r\0\n\0");
    for (const QByteArray &content :
         {QByteArrayLiteral("a\r\nb\nc\rd"), QByteArrayLiteral("\xef\xbb\xbf\xef\xbb\xbfx\r\n"),
          QByteArrayLiteral("\xf0\x9f\x98\x80 \xc3\xa9"), utf16, QByteArrayLiteral("\xfe\xff\0a\0\n"),
          QByteArrayLiteral("caf\xe9\r\n"), QByteArrayLiteral("a\0b"), QByteArray("")}) {
        put(content);
        ASSERT_TRUE(file.read(path(), &text, &error));
        put("else");
        ASSERT_TRUE(file.write(text, &error));
        EXPECT_EQ(bytes().toHex(), content.toHex());
    }
}

TEST_F(TextFiles, AreReadInTheirEncoding)
{
    put(QByteArrayLiteral("\xff\xfe"
                          "a\0\x3d\xd8\x00\xde"));
    ASSERT_TRUE(file.read(path(), &text, &error));
    EXPECT_EQ(text, QString::fromUtf8("a\xf0\x9f\x98\x80"));
    put(QByteArrayLiteral("caf\xe9"));
    ASSERT_TRUE(file.read(path(), &text, &error));
    EXPECT_EQ(text, QString::fromUtf8("café"));
    ASSERT_TRUE(file.write(QString::fromUtf8("€"), &error));
    EXPECT_EQ(bytes(), QByteArrayLiteral("\xe2\x82\xac"));
}

TEST_F(TextFiles, ThatCannotBeReadChangeNothing)
{
    put("a");
    ASSERT_TRUE(file.read(path(), &text, &error));
    for (const QString &bad : {path("missing"), folder.path(), QStringLiteral("/dev/zero")}) {
        error.clear();
        EXPECT_FALSE(file.read(bad, &text, &error));
        EXPECT_TRUE(error.localizedDescription().contains(bad)) << error.localizedDescription().toStdString();
        EXPECT_EQ(text, QStringLiteral("a"));
        EXPECT_EQ(file.path(), path());
    }
}

TEST_F(TextFiles, DetectChangesByOtherPrograms)
{
    put("a");
    EXPECT_FALSE(file.hasChangedOnDisk());
    ASSERT_TRUE(file.read(path(), &text, &error));
    EXPECT_FALSE(file.hasChangedOnDisk());
    put("longer");
    EXPECT_TRUE(file.hasChangedOnDisk());
    ASSERT_TRUE(file.write(text, &error));
    EXPECT_FALSE(file.hasChangedOnDisk());
    QFile::remove(path());
    EXPECT_FALSE(file.hasChangedOnDisk());
}

TEST_F(TextFiles, OnAFullDeviceGiveAnError)
{
    file.setPath(QStringLiteral("/dev/full"));
    EXPECT_FALSE(file.write(QStringLiteral("text"), &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("No space left")))
        << error.localizedDescription().toStdString();
    EXPECT_TRUE(QFile::exists(QStringLiteral("/dev/full")));
}

TEST_F(TextFiles, KeepOldTextOnFullDisk)
{
    put("precious");
    ASSERT_TRUE(file.read(path(), &text, &error));
    for (const int size : {336, 100'000}) {
        const FullDisk disk;
        EXPECT_FALSE(file.write(QString(size, u'x'), &error));
        EXPECT_TRUE(error);
        EXPECT_EQ(bytes(), QByteArrayLiteral("precious"));
    }
}
