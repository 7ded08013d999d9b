#include "Foundation/KNUserDefaults.h"

#include "Support/PrintQt.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const QString Agent = QStringLiteral("MSSQLAgentEnabled");

class KNUserDefaultsTest : public testing::Test
{
protected:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("config/preferences.ini"));
};

} // namespace

TEST_F(KNUserDefaultsTest, AnswerWithTheDefaultForAnUnknownKey)
{
    const KNUserDefaults defaults(m_path);
    EXPECT_FALSE(defaults.boolForKey(Agent));
    EXPECT_TRUE(defaults.boolForKey(Agent, true));
    EXPECT_TRUE(defaults.stringForKey(Agent).isNull());
    EXPECT_EQ(defaults.stringForKey(Agent, QStringLiteral("x")), QStringLiteral("x"));
    EXPECT_FALSE(defaults.objectForKey(Agent).isValid());
}

TEST_F(KNUserDefaultsTest, ReturnStoredValues)
{
    KNUserDefaults defaults(m_path);
    defaults.setObject(Agent, true);
    defaults.setObject(QStringLiteral("editor/font"), QStringLiteral("Mono, 10 \U0001F600\n\"x\""));
    EXPECT_TRUE(defaults.boolForKey(Agent));
    EXPECT_EQ(defaults.stringForKey(QStringLiteral("editor/font")),
              QStringLiteral("Mono, 10 \U0001F600\n\"x\""));
}

TEST_F(KNUserDefaultsTest, KeepTheirValuesInTheFile)
{
    const QStringList recent = {QStringLiteral("a"), QStringLiteral("b, c")};
    {
        KNUserDefaults defaults(m_path);
        defaults.setObject(Agent, true);
        defaults.setObject(QStringLiteral("text"), QStringLiteral("Mono, 10 \U0001F600\r\n\"x\" 100%"));
        defaults.setObject(QStringLiteral("empty"), QStringLiteral(""));
        defaults.setObject(QStringLiteral("width"), 640);
        defaults.setObject(QStringLiteral("recent"), recent);
    }
    const KNUserDefaults defaults(m_path);
    EXPECT_TRUE(defaults.boolForKey(Agent));
    EXPECT_EQ(defaults.stringForKey(QStringLiteral("text")),
              QStringLiteral("Mono, 10 \U0001F600\r\n\"x\" 100%"));
    EXPECT_EQ(defaults.stringForKey(QStringLiteral("empty"), QStringLiteral("default")), QStringLiteral(""));
    EXPECT_EQ(defaults.objectForKey(QStringLiteral("width")).toInt(), 640);
    EXPECT_EQ(defaults.objectForKey(QStringLiteral("recent")).toStringList(), recent);
}

TEST_F(KNUserDefaultsTest, DoNotReturnRemovedValues)
{
    KNUserDefaults defaults(m_path);
    defaults.setObject(Agent, true);
    defaults.removeObject(Agent);
    ASSERT_TRUE(defaults.synchronize());
    EXPECT_FALSE(KNUserDefaults(m_path).objectForKey(Agent).isValid());
}

TEST_F(KNUserDefaultsTest, AreForTheUserAlone)
{
    KNUserDefaults defaults(m_path);
    defaults.setObject(Agent, true);
    ASSERT_TRUE(defaults.synchronize());
    constexpr auto Others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    EXPECT_FALSE(QFileInfo(m_path).permissions() & Others);
    EXPECT_FALSE(QFileInfo(QFileInfo(m_path).path()).permissions() & Others);
}

TEST_F(KNUserDefaultsTest, ReportWriteFailure)
{
    QFile file(m_folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    KNUserDefaults defaults(file.fileName() + QStringLiteral("/preferences.ini"));
    defaults.setObject(Agent, true);
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_TRUE(defaults.boolForKey(Agent));
}

TEST_F(KNUserDefaultsTest, OfTheProgramLieBelowTheConfigFolder)
{
    KNUserDefaults::standardUserDefaults()->setObject(Agent, true);
    ASSERT_TRUE(KNUserDefaults::standardUserDefaults()->synchronize());
    EXPECT_TRUE(QFileInfo::exists(qEnvironmentVariable("XDG_CONFIG_HOME") +
                                  QStringLiteral("/vantor/preferences.ini")));
}
