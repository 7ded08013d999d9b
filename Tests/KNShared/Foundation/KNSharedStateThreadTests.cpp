#include "Foundation/KNHostCache.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNNotificationCenter.h"
#include "Foundation/KNUserDefaults.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace {

constexpr int SharingThreads = 8;
constexpr int Steps = 50;

/// Runs `step(thread, step)` on several threads at once.
void onManyThreads(const std::function<void(int thread, int step)> &step)
{
    std::vector<std::thread> threads;
    threads.reserve(SharingThreads);
    for (int thread = 0; thread < SharingThreads; ++thread) {
        threads.emplace_back([&step, thread] {
            for (int number = 0; number < Steps; ++number)
                step(thread, number);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace

TEST(KNLogHelperThreads, WriteWholeLinesAndRotateAtOnce)
{
    const QTemporaryDir folder;
    KNLogHelper log(folder.path(), 16'384);
    onManyThreads([&](int thread, int step) {
        if (step % 10 == 0)
            log.registerSecret(QStringLiteral("secret%1").arg(thread));
        log.logMessage("from %d step %d: secret%d end", thread, step, thread);
    });
    int lines = 0;
    for (const char *name : {"vantor.log", "vantor.1.log", "vantor.2.log", "vantor.3.log", "vantor.4.log"}) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        while (!file.atEnd()) {
            EXPECT_TRUE(file.readLine().endsWith(" ******** end\n"));
            ++lines;
        }
    }
    EXPECT_EQ(lines, SharingThreads * Steps);
}

TEST(KNHostCacheThreads, LookUpAndClearAtOnce)
{
    KNHostCache cache(
        [](const QString &host) { return QStringList{QStringLiteral("127.0.0.") + host.mid(4)}; });
    std::atomic<int> wrong = 0;
    onManyThreads([&](int thread, int step) {
        const QString number = QString::number(step % 7 + 1);
        if (cache.cachedIPAddressForHost(QStringLiteral("host") + number) !=
            QStringLiteral("127.0.0.") + number)
            ++wrong;
        if (thread == 0)
            cache.clear();
    });
    EXPECT_EQ(wrong, 0);
}

TEST(KNNotificationCenterThreads, ObservePostAndEndAtOnce)
{
    KNNotificationCenter center;
    std::atomic<int> calls = 0;
    const auto lasting =
        center.addObserver(QStringLiteral("n"), [&](const QString &, const QVariantMap &) { ++calls; });
    onManyThreads([&](int, int) {
        const auto token =
            center.addObserver(QStringLiteral("n"), [](const QString &, const QVariantMap &) {});
        center.post(QStringLiteral("n"));
    });
    EXPECT_EQ(calls, SharingThreads * Steps);
}

TEST(KNUserDefaultsThreads, ReadAndWriteAtOnce)
{
    const QTemporaryDir folder;
    KNUserDefaults defaults(folder.filePath(QStringLiteral("preferences.ini")));
    onManyThreads([&](int thread, int step) {
        const QString key = QStringLiteral("key%1").arg(thread);
        defaults.setObject(key, QString::number(step));
        EXPECT_EQ(defaults.stringForKey(key), QString::number(step));
        EXPECT_TRUE(step % 25 != 0 || defaults.synchronize());
    });
    EXPECT_EQ(defaults.stringForKey(QStringLiteral("key0")), QString::number(Steps - 1));
}
