#include "Foundation/KNError.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

TEST(KNError, IsUnsetUntilItIsGivenSomething)
{
    EXPECT_FALSE(KNError().isSet());
    EXPECT_FALSE(static_cast<bool>(KNError()));
}

TEST(KNError, WithEmptyDomainAndCodeZeroIsStillAnError)
{
    EXPECT_TRUE(KNError(QStringLiteral(""), 0, QStringLiteral("")).isSet());
}

TEST(KNError, KeepsAllFieldsUntilCleared)
{
    KNError error(QStringLiteral("SQLClient"), 208, QStringLiteral("Invalid object name"),
                  {{QStringLiteral("line"), 3}});
    EXPECT_EQ(error.domain(), QStringLiteral("SQLClient"));
    EXPECT_EQ(error.code(), 208);
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("Invalid object name"));
    EXPECT_EQ(error.userInfo().value(QStringLiteral("line")).toInt(), 3);

    error.clear();
    EXPECT_FALSE(error);
    EXPECT_TRUE(error.domain().isNull());
    EXPECT_TRUE(error.userInfo().isEmpty());
}

TEST(KNError, KeepsItsFactsInAnotherDomain)
{
    const KNError error(QStringLiteral("a"), 5, QStringLiteral("text"), {{QStringLiteral("key"), 1}});
    const KNError other = error.inDomain(QStringLiteral("b"));
    EXPECT_EQ(other.domain(), QStringLiteral("b"));
    EXPECT_EQ(other.code(), 5);
    EXPECT_EQ(other.localizedDescription(), QStringLiteral("text"));
    EXPECT_EQ(other.userInfo(), error.userInfo());
    EXPECT_TRUE(KNError().inDomain(QStringLiteral("b")));
}
