#include "UI/Credentials/KNKeychainStore.h"

#include "Foundation/KNPrivateFolder.h"
#include "Foundation/KNStoreLock.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"

using WindowTesting::waitFor;

TEST(KeychainStore, ReportsMissingServiceWithoutSessionBus)
{
    KNKeychainStore store(QStringLiteral("vantor-test"));
    std::vector<KNError> errors;
    store.textForKey(QStringLiteral("key"), [&](const QString &text, const KNError &error) {
        EXPECT_TRUE(text.isNull());
        errors.push_back(error);
    });
    EXPECT_TRUE(errors.empty()); // the answer comes later
    ASSERT_TRUE(waitFor([&] { return errors.size() == 1; }));
    store.setText(QStringLiteral("key"), QStringLiteral("secret"),
                  [&](const KNError &error) { errors.push_back(error); });
    store.removeKey(QStringLiteral("key"), [&](const KNError &error) { errors.push_back(error); });
    ASSERT_TRUE(waitFor([&] { return errors.size() == 3; }));
    for (const KNError &error : errors) {
        EXPECT_EQ(error.domain(), KNKeyValueStore::ErrorDomain);
        EXPECT_EQ(error.code(), KNKeyValueStore::NoService);
    }
}

TEST(KeychainStore, ChangesATextOnlyWhileNoOtherProgramDoes)
{
    const QString path = KNStateFolder() + QStringLiteral("/vantor/keyring.lock");
    auto other = std::make_unique<KNStoreLock>(path);
    ASSERT_TRUE(other->isHeld());
    const auto store = std::make_shared<KNKeychainStore>(QStringLiteral("vantor-test"));
    std::vector<KNError> answers;
    store->changeText(
        QStringLiteral("key"), [](const QString &text) { return text; },
        [&](const QString &, const KNError &error) { answers.push_back(error); });
    QTest::qWait(300);
    EXPECT_TRUE(answers.empty());
    other.reset();
    ASSERT_TRUE(waitFor([&] { return answers.size() == 1; }));
    EXPECT_EQ(answers.front().code(), KNKeyValueStore::NoService); // reached, but there is none here
    EXPECT_TRUE(waitFor([&] { return QLockFile(path).tryLock(0); })) << "the lock is not released";
}
