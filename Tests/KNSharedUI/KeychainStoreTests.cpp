#include "UI/Credentials/KNKeychainStore.h"

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
