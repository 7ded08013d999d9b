#include "Foundation/KNNotificationCenter.h"

#include "Support/PrintQt.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

const QString TableAdded = QStringLiteral("tableAdded");

} // namespace

TEST(KNNotificationCenter, CallsEveryObserverOfTheNameInOrderOfArrival)
{
    KNNotificationCenter center;
    QStringList calls;
    const auto first = center.addObserver(TableAdded, [&](const QString &name, const QVariantMap &userInfo) {
        calls += QStringLiteral("first ") + name + u' ' + userInfo.value(QStringLiteral("table")).toString();
    });
    const auto second = center.addObserver(
        TableAdded, [&](const QString &, const QVariantMap &) { calls += QStringLiteral("second"); });
    center.post(TableAdded, {{QStringLiteral("table"), QStringLiteral("Orders")}});
    EXPECT_EQ(calls, QStringList({QStringLiteral("first tableAdded Orders"), QStringLiteral("second")}));
}

TEST(KNNotificationCenter, LeavesObserversOfOtherNamesAlone)
{
    KNNotificationCenter center;
    int calls = 0;
    const auto token = center.addObserver(TableAdded, [&](const QString &, const QVariantMap &) { ++calls; });
    center.post(QStringLiteral("tableRemoved"));
    EXPECT_EQ(calls, 0);
}

TEST(KNNotificationCenter, EndsAnObservationWithTheLastCopyOfItsToken)
{
    KNNotificationCenter center;
    int calls = 0;
    auto token = center.addObserver(TableAdded, [&](const QString &, const QVariantMap &) { ++calls; });
    auto copy = token;
    token.reset();
    center.post(TableAdded);
    EXPECT_EQ(calls, 1);
    copy.reset();
    center.post(TableAdded);
    EXPECT_EQ(calls, 1);
}

TEST(KNNotificationCenter, ReleasesCapturesOfObserver)
{
    KNNotificationCenter center;
    auto held = std::make_shared<int>(1);
    auto token = center.addObserver(TableAdded, [held](const QString &, const QVariantMap &) {});
    EXPECT_EQ(held.use_count(), 2);
    token.reset();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(KNNotificationCenter, LetsAnObserverEndItselfAddOthersAndPost)
{
    KNNotificationCenter center;
    QStringList calls;
    KNNotificationCenter::Token own;
    KNNotificationCenter::Token added;
    own = center.addObserver(TableAdded, [&](const QString &, const QVariantMap &) {
        calls += QStringLiteral("own");
        own.reset();
        added = center.addObserver(
            TableAdded, [&](const QString &, const QVariantMap &) { calls += QStringLiteral("added"); });
        center.post(QStringLiteral("other"));
    });
    const auto other = center.addObserver(QStringLiteral("other"),
                                          [&](const QString &name, const QVariantMap &) { calls += name; });
    center.post(TableAdded);
    EXPECT_EQ(calls, QStringList({QStringLiteral("own"), QStringLiteral("other")}));
    center.post(TableAdded);
    EXPECT_EQ(calls.last(), QStringLiteral("added"));
    EXPECT_EQ(calls.size(), 3);
}

TEST(KNNotificationCenter, MayEndBeforeItsTokens)
{
    auto center = std::make_unique<KNNotificationCenter>();
    auto token = center->addObserver(TableAdded, [](const QString &, const QVariantMap &) {});
    center.reset();
    EXPECT_NO_THROW(token.reset());
}

TEST(KNNotificationCenter, OffersOneForTheProgram)
{
    EXPECT_EQ(KNNotificationCenter::defaultCenter(), KNNotificationCenter::defaultCenter());
}
