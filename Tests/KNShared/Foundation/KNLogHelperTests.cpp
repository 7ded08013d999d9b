#include "Foundation/KNLogHelper.h"
#include "Support/FullDisk.h"

#include "Support/PrintQt.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KNLogHelperTests {

namespace {

QString contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

mode_t modeOf(const QString &path)
{
    struct stat status
    {
    };
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 0777 : 0;
}

class KNLogHelperTest : public testing::Test
{
protected:
    QTemporaryDir m_base;
    QString m_folder = m_base.filePath(QStringLiteral("state/logs"));

    QString generation(int number) const { return m_folder + QStringLiteral("/vantor.%1.log").arg(number); }
};

} // namespace

TEST_F(KNLogHelperTest, WritesTimeThreadAndMessage)
{
    KNLogHelper log(m_folder);
    log.logMessage("Loaded %d tables of %@", 7, QStringLiteral("sales"));
    const QRegularExpression line(QStringLiteral(
        "^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z \\[\\d+\\] Loaded 7 tables of sales\n$"));
    EXPECT_TRUE(line.match(contents(log.filePath())).hasMatch()) << contents(log.filePath()).toStdString();
}

TEST_F(KNLogHelperTest, TakesAPlainMessageWithPercentSignsAsItIs)
{
    KNLogHelper log(m_folder);
    log.logMessage(QStringLiteral("LIKE '%@%d'"));
    EXPECT_TRUE(contents(log.filePath()).endsWith(QStringLiteral("] LIKE '%@%d'\n")));
}

TEST_F(KNLogHelperTest, CountsRepetitionsInsteadOfWritingThem)
{
    {
        KNLogHelper log(m_folder);
        for (int time = 0; time < 4; ++time)
            log.logMessage("one");
        log.logMessage("two");
        log.logMessage("one");
        log.logMessage("one");
    }
    const QStringList lines = contents(m_folder + QStringLiteral("/vantor.log")).split(u'\n');
    ASSERT_EQ(lines.size(), 6);
    EXPECT_TRUE(lines[0].endsWith(QStringLiteral("] one")));
    EXPECT_TRUE(lines[1].endsWith(QStringLiteral("] The record above was repeated 3 times.")));
    EXPECT_TRUE(lines[2].endsWith(QStringLiteral("] two")));
    EXPECT_TRUE(lines[3].endsWith(QStringLiteral("] one")));
    EXPECT_TRUE(lines[4].endsWith(QStringLiteral("] The record above was repeated 1 time.")));
}

TEST_F(KNLogHelperTest, KeepsTheFileForTheUserAlone)
{
    const KNLogHelper log(m_folder);
    EXPECT_EQ(modeOf(log.filePath()), 0600U);
    EXPECT_EQ(modeOf(m_folder), 0700U);
}

TEST_F(KNLogHelperTest, ClosesAFileThatWasOpenToOthers)
{
    ASSERT_TRUE(QDir().mkpath(m_folder));
    QFile file(m_folder + QStringLiteral("/vantor.log"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(fchmod(file.handle(), 0666), 0);
    const KNLogHelper log(m_folder);
    EXPECT_EQ(modeOf(log.filePath()), 0600U);
}

TEST_F(KNLogHelperTest, WritesAnErrorWithDetailsAndUserInformation)
{
    KNLogHelper log(m_folder);
    log.logError(
        KNError(QStringLiteral("SQLClient"), 208, QStringLiteral("Invalid object name 'x'."),
                {{QStringLiteral("range"), QVariantMap{{QStringLiteral("length"), 3}}},
                 {QStringLiteral("lines"), QVariantList{1, QStringLiteral("two")}}}),
        {{QStringLiteral("Query"), QStringLiteral("SELECT 1\r\nFROM x")}, {QStringLiteral("Attempt"), 2}});
    EXPECT_TRUE(contents(log.filePath())
                    .endsWith(QStringLiteral("] Error SQLClient 208: Invalid object name 'x'.\n"
                                             "    Attempt: 2\n"
                                             "    Query: SELECT 1\n"
                                             "    FROM x\n"
                                             "    lines: [1, two]\n"
                                             "    range: {length=3}\n")))
        << contents(log.filePath()).toStdString();
}

TEST_F(KNLogHelperTest, LetsNoMessagePassItselfOffAsAnotherRecord)
{
    KNLogHelper log(m_folder);
    log.logMessage(QStringLiteral("a\n2020-01-01T00:00:00.000Z [1] forged\rb\x1B[31m"));
    const QStringList lines = contents(log.filePath()).split(u'\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[1], QStringLiteral("    2020-01-01T00:00:00.000Z [1] forged"));
    EXPECT_EQ(lines[2], QStringLiteral("    b?[31m"));
}

TEST_F(KNLogHelperTest, WritesTextOfAnyScriptAsUtf8)
{
    KNLogHelper log(m_folder);
    log.logMessage(QStringLiteral("gr\u00FCn \U0001F600"));
    EXPECT_TRUE(contents(log.filePath()).endsWith(QStringLiteral("gr\u00FCn \U0001F600\n")));
}

TEST_F(KNLogHelperTest, RecordsOnlyOperationsAboveTheThreshold)
{
    KNLogHelper log(m_folder);
    log.logSlowOperation(QStringLiteral("load tables"), 1.0);
    log.logSlowOperation(QStringLiteral("load views"), 0.5, 0.5);
    EXPECT_EQ(contents(log.filePath()), QString(QStringLiteral("")));
    log.logSlowOperation(QStringLiteral("load keys"), 1.25);
    EXPECT_TRUE(
        contents(log.filePath()).endsWith(QStringLiteral("Slow operation: load keys took 1.250 s\n")));
}

TEST_F(KNLogHelperTest, StartsANewFileWhenTheOldOneIsFullAndKeepsFour)
{
    constexpr qint64 MaximumBytes = 1000;
    KNLogHelper log(m_folder, MaximumBytes);
    const QString filling(700, u'x');
    for (int record = 1; record <= 7; ++record)
        log.logMessage("record %d %@", record, filling);

    EXPECT_TRUE(contents(log.filePath()).contains(QStringLiteral("record 7 ")));
    for (int older = 1; older <= 4; ++older) {
        EXPECT_TRUE(contents(generation(older)).contains(QStringLiteral("record %1 ").arg(7 - older)));
        EXPECT_LE(QFileInfo(generation(older)).size(), MaximumBytes);
        EXPECT_EQ(modeOf(generation(older)), 0600U);
    }
    EXPECT_FALSE(QFile::exists(generation(5)));
    EXPECT_EQ(QDir(m_folder).entryList(QDir::Files).size(), 5);
}

TEST_F(KNLogHelperTest, WritesARecordLargerThanAFileWhole)
{
    KNLogHelper log(m_folder, 100);
    log.logMessage(QString(5000, u'y'));
    EXPECT_GT(contents(log.filePath()).size(), 5000);
}

TEST_F(KNLogHelperTest, GoesOnInTheFileOfAFormerRun)
{
    KNLogHelper(m_folder).logMessage("first run");
    KNLogHelper log(m_folder);
    log.logMessage("second run");
    EXPECT_TRUE(contents(log.filePath()).contains(QStringLiteral("first run")));
    EXPECT_TRUE(contents(log.filePath()).contains(QStringLiteral("second run")));
}

TEST_F(KNLogHelperTest, WritesNothingToStandardErrorWithoutAFolder)
{
    QFile file(m_base.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    KNLogHelper log(file.fileName() + QStringLiteral("/logs"));
    EXPECT_TRUE(log.filePath().isEmpty());
    log.registerSecret(QStringLiteral("hunter2"));

    testing::internal::CaptureStderr();
    log.logMessage("nowhere to write hunter2");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(KNLogHelperTest, NeitherWaitsForTheReaderOfAFifoNorWritesIntoIt)
{
    ASSERT_TRUE(QDir().mkpath(m_folder));
    const QByteArray fifo = QFile::encodeName(m_folder + QStringLiteral("/vantor.log"));
    ASSERT_EQ(mkfifo(fifo.constData(), 0600), 0);
    alarm(20); // ends a program that blocks
    {
        KNLogHelper log(m_folder);
        log.logMessage("nobody reads");
        EXPECT_TRUE(log.filePath().isEmpty());
    }
    const int reader = open(fifo.constData(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    testing::internal::CaptureStderr();
    {
        KNLogHelper log(m_folder);
        log.logMessage("somebody reads");
        EXPECT_TRUE(log.filePath().isEmpty());
    }
    alarm(0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    char byte = 0;
    EXPECT_EQ(read(reader, &byte, 1), 0) << "the FIFO holds a line";
    close(reader);
}

TEST_F(KNLogHelperTest, FollowsNoLinkThatStandsInPlaceOfItsFile)
{
    ASSERT_TRUE(QDir().mkpath(m_folder));
    const QString elsewhere = m_base.filePath(QStringLiteral("elsewhere"));
    ASSERT_TRUE(QFile::link(elsewhere, m_folder + QStringLiteral("/vantor.log")));
    KNLogHelper log(m_folder);
    testing::internal::CaptureStderr();
    log.logMessage("stay here");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(log.filePath().isEmpty());
    EXPECT_FALSE(QFile::exists(elsewhere));
}

TEST_F(KNLogHelperTest, DropsRecordsSilentlyWhileTheDiskIsFull)
{
    KNLogHelper log(m_folder);
    testing::internal::CaptureStderr();
    {
        const FullDisk disk(256);
        log.logMessage(QString(200, u'a'));
        log.logMessage("does not fit %@", QString(40, u'b'));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    log.logMessage("room again");
    EXPECT_TRUE(contents(log.filePath()).endsWith(QStringLiteral("room again\n")));
}

TEST_F(KNLogHelperTest, PassesEveryRecordToObserver)
{
    KNLogHelper log(m_folder);
    QStringList records;
    log.setObserver([&](const QString &record) {
        records += record;
        if (records.size() == 1)
            log.logMessage("from the observer");
    });
    log.logMessage("one\ntwo");
    log.setObserver({});
    log.logMessage("unseen");
    ASSERT_EQ(records.size(), 2);
    EXPECT_TRUE(records[0].endsWith(QStringLiteral("one\n    two")));
    EXPECT_TRUE(records[1].endsWith(QStringLiteral("from the observer")));
}

TEST_F(KNLogHelperTest, LiesBelowTheStateFolder)
{
    EXPECT_EQ(KNLogHelper::sharedInstance()->filePath(),
              qEnvironmentVariable("XDG_STATE_HOME") + QStringLiteral("/vantor/logs/vantor.log"));
}

} // namespace KNLogHelperTests
