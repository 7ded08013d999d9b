#include "Foundation/KNLogHelper.h"

#include "Support/PrintQt.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class KNLogSecretsTest : public testing::Test
{
protected:
    QTemporaryDir m_folder;
    KNLogHelper m_log{m_folder.path()};

    QString logged() const
    {
        QFile file(m_log.filePath());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    /// What the file holds after the time and thread of its only record.
    QString loggedMessage() const { return logged().section(QStringLiteral("] "), 1).chopped(1); }
};

} // namespace

TEST_F(KNLogSecretsTest, AreHiddenWhereverTheyStand)
{
    m_log.registerSecret(QStringLiteral("hunter2"));
    m_log.logMessage("hunter2 login hunter2hunter2 Hunter2");
    EXPECT_EQ(loggedMessage(), QStringLiteral("******** login **************** Hunter2"));
}

TEST_F(KNLogSecretsTest, AreHiddenInEveryPartOfAnError)
{
    m_log.registerSecret(QStringLiteral("hunter2"));
    const QString secret = QStringLiteral("<hunter2>");
    const QVariantMap nested{{secret, QVariantList{secret, QVariantMap{{secret, secret}}}}};
    m_log.logError(KNError(secret, 1, secret, nested),
                   {{QStringLiteral("Query"), secret}, {secret, QStringList{secret}}});
    EXPECT_FALSE(logged().contains(QStringLiteral("hunter2"))) << logged().toStdString();
    EXPECT_GE(logged().count(QStringLiteral("<********>")), 8);
}

TEST_F(KNLogSecretsTest, AreHiddenWhenArgumentsJoinThem)
{
    m_log.registerSecret(QStringLiteral("hunter2"));
    m_log.logMessage("%@%d", QStringLiteral("hunter"), 2);
    EXPECT_EQ(loggedMessage(), QStringLiteral("********"));
}

TEST_F(KNLogSecretsTest, AreHiddenWhenDetailsJoinThem)
{
    m_log.registerSecret(QStringLiteral("word: hun"));
    m_log.registerSecret(QStringLiteral("first\r\nsecond: third"));
    m_log.logError(KNError(QStringLiteral("d"), 0, QStringLiteral("e")),
                   {{QStringLiteral("password"), QStringLiteral("hunter")},
                    {QStringLiteral("query"), QStringLiteral("first\r\nsecond: third")}});
    EXPECT_TRUE(logged().contains(QStringLiteral("\n    pass********ter\n    query: ********\n")))
        << logged().toStdString();
}

TEST_F(KNLogSecretsTest, AreHiddenWithTheirLineEnds)
{
    m_log.registerSecret(QStringLiteral("top\r\nsecret\tword"));
    m_log.logMessage(QStringLiteral("<top\r\nsecret\tword>"));
    EXPECT_EQ(loggedMessage(), QStringLiteral("<********>"));
}

TEST_F(KNLogSecretsTest, AreHiddenInSQLTextWithDoubledQuotes)
{
    m_log.registerSecret(QStringLiteral("o'brien's"));
    m_log.logMessage(QStringLiteral("PASSWORD = N'o''brien''s' or o'brien's"));
    EXPECT_EQ(loggedMessage(), QStringLiteral("PASSWORD = N'********' or ********"));
}

TEST_F(KNLogSecretsTest, AreHiddenWholeWhereTheyOverlapOrHoldEachOther)
{
    for (const char *secret : {"abc", "bcd", "abcdef", "xyz"})
        m_log.registerSecret(QString::fromLatin1(secret));
    m_log.logMessage("-abcd-abcdef-abcxyz-");
    EXPECT_EQ(loggedMessage(), QStringLiteral("-********-********-****************-"));
}

TEST_F(KNLogSecretsTest, ThatRepeatThemselvesAreHiddenToTheirEnd)
{
    m_log.registerSecret(QStringLiteral("aaa"));
    m_log.logMessage("-aaaaa-aa-");
    EXPECT_EQ(loggedMessage(), QStringLiteral("-********-aa-"));
}

TEST_F(KNLogSecretsTest, MadeOfPatternCharactersAreTakenLiterally)
{
    m_log.registerSecret(QStringLiteral(".*%@\\1"));
    m_log.logMessage(QStringLiteral("a .*%@\\1 b"));
    EXPECT_EQ(loggedMessage(), QStringLiteral("a ******** b"));
}

TEST_F(KNLogSecretsTest, OfAnyScriptAreHidden)
{
    m_log.registerSecret(QStringLiteral("\U0001F600\u00FC"));
    m_log.logMessage(QStringLiteral("<\U0001F600\u00FC>"));
    EXPECT_EQ(loggedMessage(), QStringLiteral("<********>"));
}

TEST_F(KNLogSecretsTest, ShorterThanTheMinimumAreNotRegistered)
{
    m_log.registerSecret(QString());
    m_log.registerSecret(QStringLiteral(""));
    m_log.registerSecret(QStringLiteral("ab"));
    m_log.logMessage("about");
    EXPECT_EQ(loggedMessage(), QStringLiteral("about"));
}

TEST_F(KNLogSecretsTest, AreHiddenFromTheObserverToo)
{
    m_log.registerSecret(QStringLiteral("hunter2"));
    QString seen;
    m_log.setObserver([&](const QString &record) { seen += record; });
    m_log.logMessage("password hunter2");
    EXPECT_TRUE(seen.endsWith(QStringLiteral("password ********"))) << seen.toStdString();
}
