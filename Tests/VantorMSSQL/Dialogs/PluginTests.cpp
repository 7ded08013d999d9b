#include "Connector/KNConnectorLoader.h"
#include "Connector/KNConnectorPlugin.h"
#include "Recent/SQLRecentConnectionList.h"
#include "UI/Connecting/ConnectionWindowController.h"
#include "UI/KNConnectorUserInterface.h"

#include <gtest/gtest.h>

#include <QObject>

TEST(Connector, BringsItsWindowsWithIt)
{
    KNError error;
    KNConnectorPlugin *const plugin = KNConnectorLoader::load(QStringLiteral(VANTOR_CONNECTOR), &error);
    ASSERT_TRUE(plugin) << error.localizedDescription().toStdString();
    auto *const windows = dynamic_cast<KNConnectorUserInterface *>(plugin);
    ASSERT_TRUE(windows);
    EXPECT_TRUE(qobject_cast<KNConnectorUserInterface *>(dynamic_cast<QObject *>(plugin)));
    QWidget parent;
    const ConnectionWindowController *const dialog = windows->createConnectionWindowController(&parent);
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->parent(), &parent);
    EXPECT_TRUE(windows->recentConnections().makeEntry());
    const KNConnectorPreferences preferences = windows->preferences();
    QStringList keys;
    for (const KNBooleanPreference &preference : preferences.booleans) {
        keys.append(preference.key);
        EXPECT_FALSE(preference.defaultValue) << preference.key.toStdString();
    }
    EXPECT_EQ(keys, (QStringList{QStringLiteral("MSSQLUseCorrectedStatements"),
                                 QStringLiteral("MSSQLShowSystemDatabases"),
                                 QStringLiteral("MSSQLShowSecurity"), QStringLiteral("MSSQLShowRowCounts")}));
    EXPECT_EQ(preferences.booleans.first().title, QStringLiteral("&Use corrected statements"));
}
