#include "Foundation/KNNotificationCenter.h"
#include "Foundation/KNUserDefaults.h"
#include "UI/KNPreferences.h"

#include <gtest/gtest.h>

TEST(Preferences, ComeBackAsTheyWereSaved)
{
    const KNPreferences before = KNPreferences::current();
    KNPreferences preferences = before;
    EXPECT_EQ(preferences.nullText, QStringLiteral("NULL"));
    EXPECT_EQ(preferences.rowLimit, 0);
    preferences.tabWidth = 8;
    preferences.rowLimit = 5000;
    preferences.nullText = QStringLiteral("∅ = \"nothing\"; #");
    preferences.theme = KNPreferences::Theme::Dark;
    preferences.dateFormat = KNPreferences::DateFormat::AsStored;
    preferences.reopensTabs = false;
    preferences.completesWhileTyping = false;
    preferences.tracesProtocol = true;
    preferences.editorFont.setPointSize(17);
    int notified = 0;
    const auto token = KNNotificationCenter::defaultCenter()->addObserver(
        KNPreferences::ChangedNotificationName, [&](const QString &, const QVariantMap &) { ++notified; });

    preferences.save();

    EXPECT_EQ(notified, 1);
    EXPECT_EQ(KNPreferences::current(), preferences);
    before.save();
}

TEST(Preferences, UseDefaultsForInvalidValues)
{
    KNUserDefaults &defaults = *KNUserDefaults::standardUserDefaults();
    defaults.setObject(QStringLiteral("TabWidth"), QStringLiteral("-3"));
    defaults.setObject(QStringLiteral("Theme"), QStringLiteral("purple"));
    defaults.setObject(QStringLiteral("RowLimit"), QStringLiteral("99999999999999"));
    EXPECT_EQ(KNPreferences::current().tabWidth, 4);
    EXPECT_EQ(KNPreferences::current().theme, KNPreferences::Theme::FollowsDesktop);
    EXPECT_EQ(KNPreferences::current().rowLimit, 0);
}
