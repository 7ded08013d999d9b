#include "Foundation/KNHostCache.h"

#include "Support/PrintQt.h"

#include <QHostAddress>

#include <gtest/gtest.h>

namespace {

/// A resolver that counts its calls and answers from a list of addresses separated by blanks; a name without
/// an answer has no address.
struct CountingResolver
{
    QHash<QString, QString> answers;
    int calls = 0;

    KNHostCache::Resolver function()
    {
        return [this](const QString &host) {
            ++calls;
            const QString answer = answers.value(host);
            return answer.isNull() ? QStringList() : answer.split(QLatin1Char(' '));
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

TEST(KNHostCache, RemembersAllAddressesAndWhichOneAnswers)
{
    CountingResolver resolver{{{QStringLiteral("Group"), QStringLiteral("127.0.0.2 127.0.0.3 ::1")}}};
    KNHostCache cache(resolver.function(), std::chrono::hours(1));
    EXPECT_EQ(cache.cachedIPAddressesForHost(QStringLiteral("Group")),
              QStringLiteral("127.0.0.2 127.0.0.3 ::1").split(QLatin1Char(' ')));
    cache.prefer(QStringLiteral("group"), QStringLiteral("127.0.0.3"));
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("Group")), QStringLiteral("127.0.0.3"));
    EXPECT_EQ(cache.cachedIPAddressesForHost(QStringLiteral("Group")),
              QStringLiteral("127.0.0.3 127.0.0.2 ::1").split(QLatin1Char(' ')));
    EXPECT_EQ(resolver.calls, 1);
    cache.forget(QStringLiteral("GROUP"));
    EXPECT_EQ(cache.cachedIPAddressForHost(QStringLiteral("Group")), QStringLiteral("127.0.0.2"));
    EXPECT_EQ(resolver.calls, 2);
}

TEST(KNHostCache, PrefersNoOtherAddressForAnAddress)
{
    KNHostCache cache(CountingResolver().function());
    cache.prefer(QStringLiteral("127.0.0.2"), QStringLiteral("127.0.0.3"));
    EXPECT_EQ(cache.cachedIPAddressesForHost(QStringLiteral("127.0.0.2")),
              QStringList{QStringLiteral("127.0.0.2")});
}

TEST(KNHostCache, AsksTheSystemForLocalNames)
{
    const QStringList addresses = KNHostCache::systemResolver(QStringLiteral("localhost"));
    ASSERT_FALSE(addresses.isEmpty());
    for (const QString &address : addresses)
        EXPECT_TRUE(QHostAddress(address).isLoopback()) << address.toStdString();
    EXPECT_EQ(KNHostCache::systemResolver(QStringLiteral("127.0.0.5")),
              QStringList{QStringLiteral("127.0.0.5")});
    EXPECT_EQ(KNHostCache::systemResolver(QStringLiteral("::1")), QStringList{QStringLiteral("::1")});
}

TEST(KNHostCache, FindsNoAddressForNamesThatCannotBe)
{
    EXPECT_TRUE(KNHostCache::systemResolver(QStringLiteral("")).isEmpty());
    EXPECT_TRUE(KNHostCache::systemResolver(QStringLiteral("\u00FC..\u00FC")).isEmpty());
}
