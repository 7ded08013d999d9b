#include "Foundation/KNHostCache.h"

#include "Support/PrintQt.h"

#include <QHostAddress>

#include <gtest/gtest.h>

namespace {

/// A resolver that counts its calls and answers from a list; a name without an answer has no address.
struct CountingResolver
{
    QHash<QString, QString> answers;
    int calls = 0;

    KNHostCache::Resolver function()
    {
        return [this](const QString &host) {
            ++calls;
            return answers.value(host);
        };
    }
};

} // namespace

TEST(KNHostCache, RemembersAnAddressWithinItsLifetime)
{
    CountingResolver resolver{{{QStringLiteral("db"), QStringLiteral("127.0.0.2")}}};
    KNHostCache cache(resolver.function(), std::chrono::hours(1));
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("db")), QStringLiteral("127.0.0.2"));
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("db")), QStringLiteral("127.0.0.2"));
    EXPECT_EQ(resolver.calls, 1);
}

TEST(KNHostCache, TakesNamesThatDifferInCaseAsOne)
{
    CountingResolver resolver{{{QStringLiteral("DB"), QStringLiteral("127.0.0.2")}}};
    KNHostCache cache(resolver.function(), std::chrono::hours(1));
    cache.cachedIPAddressForHost(QStringLiteral("DB"));
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("db")), QStringLiteral("127.0.0.2"));
    EXPECT_EQ(resolver.calls, 1);
}

TEST(KNHostCache, AsksAgainWhenTheLifetimeIsOver)
{
    CountingResolver resolver{{{QStringLiteral("db"), QStringLiteral("127.0.0.2")}}};
    KNHostCache cache(resolver.function(), std::chrono::seconds(0));
    cache.cachedIPAddressForHost(QStringLiteral("db"));
    resolver.answers[QStringLiteral("db")] = QStringLiteral("127.0.0.3");
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("db")), QStringLiteral("127.0.0.3"));
    EXPECT_EQ(resolver.calls, 2);
}

TEST(KNHostCache, AsksAgainAfterItWasCleared)
{
    CountingResolver resolver{{{QStringLiteral("db"), QStringLiteral("127.0.0.2")}}};
    KNHostCache cache(resolver.function(), std::chrono::hours(1));
    cache.cachedIPAddressForHost(QStringLiteral("db"));
    cache.clear();
    cache.cachedIPAddressForHost(QStringLiteral("db"));
    EXPECT_EQ(resolver.calls, 2);
}

TEST(KNHostCache, ReturnsTheNameItselfWhenItHasNoAddressAndDoesNotRememberThat)
{
    CountingResolver resolver;
    KNHostCache cache(resolver.function(), std::chrono::hours(1));
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("nowhere")), QStringLiteral("nowhere"));
    resolver.answers[QStringLiteral("nowhere")] = QStringLiteral("127.0.0.9");
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("nowhere")), QStringLiteral("127.0.0.9"));
}

TEST(KNHostCache, ReturnsAddressesAsTheyAreWithoutAsking)
{
    CountingResolver resolver;
    KNHostCache cache(resolver.function());
    for (const char *address : {"127.0.0.1", "10.0.0.7", "::1", "2001:db8::7", "fe80::1%lo"})
        EXPECT_EQ(cache.cachedIPAddressForHost(QString::fromLatin1(address)), QString::fromLatin1(address));
    EXPECT_TRUE(cache.cachedIPAddressForHost(QString()).isNull());
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("")), QStringLiteral(""));
    EXPECT_EQ(resolver.calls, 0);
}

TEST(KNHostCache, RemembersIPv6Addresses)
{
    CountingResolver resolver{{{QStringLiteral("six"), QStringLiteral("::1")}}};
    KNHostCache cache(resolver.function());
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("six")), QStringLiteral("::1"));
}

TEST(KNHostCache, AsksTheSystemForLocalNames)
{
    const QString address = KNHostCache::systemResolver(QStringLiteral("localhost"));
    EXPECT_TRUE(QHostAddress(address).isLoopback()) << address.toStdString();
    EXPECT_EQ(KNHostCache::systemResolver(QStringLiteral("127.0.0.5")), QStringLiteral("127.0.0.5"));
    EXPECT_EQ(KNHostCache::systemResolver(QStringLiteral("::1")), QStringLiteral("::1"));
}

TEST(KNHostCache, FindsNoAddressForNamesThatCannotBe)
{
    EXPECT_TRUE(KNHostCache::systemResolver(QStringLiteral("")).isNull());
    EXPECT_TRUE(KNHostCache::systemResolver(QStringLiteral("\u00FC..\u00FC")).isNull());
}
