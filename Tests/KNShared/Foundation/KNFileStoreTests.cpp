#include "Foundation/KNFileStore.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNStoreLock.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

namespace {

const QString ListKey = QStringLiteral("MSSQLRecentConnections");

class FileStoreTest : public testing::Test
{
protected:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("data/vantor/credentials.json"));
    KNFileStore m_store{m_path};

    template <typename Answer>
    static Answer waitFor(const std::optional<Answer> &answer)
    {
        for (int i = 0; i < 100 && !answer; ++i)
            KNDispatch::pumpMainQueue(1000);
        return answer.value_or(Answer());
    }
    KNError set(const QString &key, const QString &text)
    {
        std::optional<KNError> answer;
        m_store.setText(key, text, [&](const KNError &error) { answer = error; });
        return waitFor(answer);
    }
    KNError remove(const QString &key)
    {
        std::optional<KNError> answer;
        m_store.removeKey(key, [&](const KNError &error) { answer = error; });
        return waitFor(answer);
    }
    QString text(const QString &key, KNError *error = nullptr) { return textIn(m_store, key, error); }
    static QString textIn(KNFileStore &store, const QString &key, KNError *problem = nullptr)
    {
        std::optional<std::pair<QString, KNError>> answer;
        store.textForKey(key,
                         [&](const QString &text, const KNError &error) { answer = std::pair(text, error); });
        const auto [text, error] = waitFor(answer);
        if (problem)
            *problem = error;
        else
            EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return text;
    }
    void writeFile(const QByteArray &content)
    {
        EXPECT_FALSE(set(QStringLiteral("other"), QStringLiteral("x")));
        QFile file(m_path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
};

} // namespace

TEST_F(FileStoreTest, ReturnsStoredTextsAfterRestart)
{
    const QString secret = QStringLiteral("p\"ä\\\n\U0001F511");
    EXPECT_TRUE(text(ListKey).isNull());
    EXPECT_FALSE(set(ListKey, secret));
    EXPECT_FALSE(set(QStringLiteral("empty"), QStringLiteral("")));
    EXPECT_EQ(text(ListKey), secret);
    KNFileStore next(m_path);
    EXPECT_EQ(textIn(next, ListKey), secret);
    EXPECT_FALSE(textIn(next, QStringLiteral("empty")).isNull());
}

TEST_F(FileStoreTest, IsForTheUserAlone)
{
    ASSERT_FALSE(set(ListKey, QStringLiteral("secret")));
    EXPECT_EQ(QFileInfo(m_path).permissions() & ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser),
              QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_FALSE(QFileInfo(QFileInfo(m_path).path()).permissions() & (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(FileStoreTest, RemovesOnlyTheGivenEntry)
{
    set(ListKey, QStringLiteral("a"));
    set(QStringLiteral("other"), QStringLiteral("b"));
    EXPECT_FALSE(remove(ListKey));
    EXPECT_FALSE(remove(QStringLiteral("never there")));
    EXPECT_TRUE(text(ListKey).isNull());
    EXPECT_EQ(text(QStringLiteral("other")), QStringLiteral("b"));
}

TEST_F(FileStoreTest, KeepsTheLastOfManyWritesThatWaitForNoAnswer)
{
    int answers = 0;
    for (int i = 1; i <= 50; ++i)
        m_store.setText(ListKey, QString::number(i), [&](const KNError &) { ++answers; });
    EXPECT_EQ(text(ListKey), QStringLiteral("50"));
    EXPECT_EQ(answers, 50);
}

TEST_F(FileStoreTest, PutsADamagedFileAsideWhenItWritesAnother)
{
    writeFile("{ \"MSSQLRecent");
    KNError error;
    EXPECT_TRUE(text(ListKey, &error).isNull());
    EXPECT_EQ(error.code(), KNKeyValueStore::Damaged);
    EXPECT_TRUE(error.localizedDescription().contains(m_path)) << error.localizedDescription().toStdString();
    EXPECT_FALSE(set(ListKey, QStringLiteral("new")));
    EXPECT_EQ(text(ListKey), QStringLiteral("new"));
    QFile damaged(m_path + QStringLiteral(".damaged"));
    ASSERT_TRUE(damaged.open(QIODevice::ReadOnly));
    EXPECT_EQ(damaged.readAll(), QByteArray("{ \"MSSQLRecent"));
}

TEST_F(FileStoreTest, ReportsUnreadableFileAndKeepsIt)
{
    QFile inTheWay(m_folder.filePath(QStringLiteral("data")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_EQ(set(ListKey, QStringLiteral("x")).code(), KNKeyValueStore::NotWritten);

    // A folder in the file's place cannot be opened, whoever asks.
    ASSERT_TRUE(inTheWay.remove());
    ASSERT_TRUE(QDir().mkpath(m_path));
    KNError error;
    text(ListKey, &error);
    EXPECT_EQ(error.code(), KNKeyValueStore::Refused);
    EXPECT_EQ(set(ListKey, QStringLiteral("x")).code(), KNKeyValueStore::Refused);
    EXPECT_TRUE(QFileInfo(m_path).isDir());
}

TEST_F(FileStoreTest, KeepsOldFileOnFullDisk)
{
    ASSERT_FALSE(set(ListKey, QStringLiteral("old")));
    // As a full disk: no file of this process may become longer.
    struct sigaction ignored = {}, before = {};
    ignored.sa_handler = SIG_IGN;
    sigaction(SIGXFSZ, &ignored, &before);
    rlimit unlimited = {};
    getrlimit(RLIMIT_FSIZE, &unlimited);
    const rlimit limited = {4096, unlimited.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
    const KNError error = set(ListKey, QString(100000, QLatin1Char('x')));
    setrlimit(RLIMIT_FSIZE, &unlimited);
    sigaction(SIGXFSZ, &before, nullptr);

    EXPECT_EQ(error.code(), KNKeyValueStore::NotWritten) << error.localizedDescription().toStdString();
    EXPECT_EQ(text(ListKey), QStringLiteral("old"));
}

TEST(KeyValueStore, OfAProgramIsAFileBelowTheDataFolderUnlessAnotherIsPutInPlace)
{
    KNKeyValueStore::setShared(nullptr);
    EXPECT_EQ(KNKeyValueStore::shared()->name(), QStringLiteral("the file ") +
                                                     qEnvironmentVariable("XDG_DATA_HOME") +
                                                     QStringLiteral("/vantor/credentials.json"));
}

TEST_F(FileStoreTest, LosesNoChangeOfTwoStoresThatShareTheFile)
{
    constexpr int Changes = 10;
    KNFileStore other(m_path); // as another program's
    int done = 0;
    for (int i = 0; i < Changes; ++i) {
        for (KNFileStore *const store : {&m_store, &other})
            store->changeText(
                ListKey, [](const QString &stored) { return stored + QLatin1Char('x'); },
                [&](const QString &, const KNError &error) {
                    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
                    ++done;
                });
    }
    for (int i = 0; i < 1000 && done < 2 * Changes; ++i)
        KNDispatch::pumpMainQueue(100);
    EXPECT_EQ(done, 2 * Changes);
    EXPECT_EQ(text(ListKey), QString(2 * Changes, QLatin1Char('x')));
}

TEST(StoreLock, GivesUpWhenAnotherProgramDoesNotFinish)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("store.lock"));
    const KNStoreLock other(path);
    ASSERT_TRUE(other.isHeld());
    EXPECT_FALSE(other.error());

    const KNStoreLock late(path, std::chrono::milliseconds(50));
    EXPECT_FALSE(late.isHeld());
    EXPECT_EQ(late.error().code(), KNKeyValueStore::NotWritten);
    EXPECT_EQ(late.error().localizedDescription(),
              QStringLiteral("Another program is changing the remembered connections. Try again when it has "
                             "finished."));
}

TEST_F(FileStoreTest, WaitsUntilAnotherProgramHasFinishedItsChange)
{
    std::optional<KNError> answer;
    {
        const KNStoreLock lock(m_path + QStringLiteral(".lock"));
        ASSERT_TRUE(lock.isHeld());
        m_store.setText(ListKey, QStringLiteral("a"), [&](const KNError &error) { answer = error; });
        KNDispatch::pumpMainQueue(300);
        EXPECT_FALSE(answer);
        EXPECT_FALSE(QFile::exists(m_path));
    }
    EXPECT_FALSE(waitFor(answer));
    EXPECT_EQ(text(ListKey), QStringLiteral("a"));
}
