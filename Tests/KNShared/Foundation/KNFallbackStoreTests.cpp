#include "Foundation/KNFallbackStore.h"

#include "Support/PrintQt.h"
#include "Support/RecordingStore.h"

#include <gtest/gtest.h>

namespace {

const QString Key = QStringLiteral("key");

struct FallbackStore : testing::Test
{
    std::shared_ptr<RecordingStore> first = std::make_shared<RecordingStore>();
    std::shared_ptr<RecordingStore> second = std::make_shared<RecordingStore>();
    KNFallbackStore store{first, second};

    QString read(KNError *problem = nullptr)
    {
        QString answer;
        store.textForKey(Key, [&](const QString &text, const KNError &error) {
            answer = text;
            if (problem)
                *problem = error;
        });
        return answer;
    }
};

} // namespace

TEST_F(FallbackStore, UsesTheFirstAsLongAsItServes)
{
    first->texts.insert(Key, QStringLiteral("kept"));
    EXPECT_EQ(read(), QStringLiteral("kept"));
    store.setText(Key, QStringLiteral("new"), [](const KNError &error) { EXPECT_FALSE(error); });
    EXPECT_EQ(first->texts.value(Key), QStringLiteral("new"));
    EXPECT_EQ(second->reads, 0);
}

TEST_F(FallbackStore, GoesOverToTheSecondOnceNoServiceRuns)
{
    first->readProblem = KNKeyValueStore::NoService;
    second->texts.insert(Key, QStringLiteral("in the file"));
    KNError error;
    EXPECT_EQ(read(&error), QStringLiteral("in the file"));
    EXPECT_FALSE(error);
    store.removeKey(Key, [](const KNError &problem) { EXPECT_FALSE(problem); });
    EXPECT_TRUE(second->texts.isEmpty());
    EXPECT_TRUE(first->removals.empty());
}

TEST_F(FallbackStore, WritesToSecondStoreWithoutService)
{
    first->writeProblem = KNKeyValueStore::NoService;
    store.setText(Key, QStringLiteral("text"), [](const KNError &error) { EXPECT_FALSE(error); });
    EXPECT_EQ(second->texts.value(Key), QStringLiteral("text"));
}

TEST_F(FallbackStore, StaysWithALockedStoreForItHoldsTheTexts)
{
    first->readProblem = KNKeyValueStore::Refused;
    KNError error;
    EXPECT_TRUE(read(&error).isNull());
    EXPECT_EQ(error.code(), KNKeyValueStore::Refused);
    EXPECT_EQ(second->reads, 0);
}

TEST_F(FallbackStore, ReportsErrorsOfSecondStore)
{
    first->readProblem = KNKeyValueStore::NoService;
    second->readProblem = KNKeyValueStore::NoService;
    KNError error;
    read(&error);
    EXPECT_EQ(error.code(), KNKeyValueStore::NoService);
    EXPECT_EQ(second->reads, 1);
}
