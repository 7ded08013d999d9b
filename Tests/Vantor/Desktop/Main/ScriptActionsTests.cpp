#include "Desktop/Main/MainWindowActions.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Scripts/KNGenerateScriptsWindowController.h"
#include "Vantor/Desktop/DesktopTesting.h"

namespace ScriptActionsTests {

namespace {

KNGenerateScriptsWindowController *generate(MainWindow &window)
{
    window.actions()->action(QStringLiteral("generateScripts"))->trigger();
    return window.findChild<KNGenerateScriptsWindowController *>();
}

} // namespace

TEST(ScriptActions, GenerateScriptsOfTheDatabaseOfTheCurrentQuery)
{
    const auto settings =
        DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("library"));
    auto *const window = new MainWindow(*settings);
    window->addQueryTab(*settings);
    auto *const scripts = generate(*window);
    ASSERT_NE(scripts, nullptr);
    EXPECT_TRUE(WindowTesting::waitFor([&] { return scripts->model()->objectCount() > 0; }));
    EXPECT_EQ(scripts->model()->checkedCount(), scripts->model()->objectCount());
    EXPECT_EQ(scripts->windowTitle(), QStringLiteral("Generate Scripts of library"));
    delete window;
    EXPECT_TRUE(WindowTesting::settle());
}

TEST(ScriptActions, AskForADatabaseFirst)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    const auto settings = DesktopTesting::settingsFor(SampleServerFixture::shared());
    settings->setDatabase(QString());
    settings->setConnectionId(QStringLiteral("script-actions")); // no remembered tabs
    auto *const window = new MainWindow(*settings);
    EXPECT_EQ(generate(*window), nullptr);
    ASSERT_EQ(alerts.messages.size(), 1u);
    EXPECT_EQ(alerts.messages.front().first(), QStringLiteral("No database is selected."));
    delete window;
    EXPECT_TRUE(WindowTesting::settle());
    KNAlerts::setShared(nullptr);
}

} // namespace ScriptActionsTests
