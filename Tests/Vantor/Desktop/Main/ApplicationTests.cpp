#include "Desktop/Application.h"

#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Start/StartWindow.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QFile>
#include <QTemporaryDir>

using WindowTesting::waitFor;

namespace {

/// The visible window of this kind; null when there is none.
template <typename Window>
Window *visible()
{
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        if (auto *const window = qobject_cast<Window *>(widget); window && window->isVisible())
            return window;
    }
    return nullptr;
}

/// Closes the main window as its user does, and waits until it is gone.
void closeMainWindow()
{
    visible<MainWindow>()->close();
    EXPECT_TRUE(waitFor([] { return !visible<MainWindow>(); }));
    EXPECT_TRUE(WindowTesting::settle());
}

} // namespace

TEST(DesktopApplication, OpensChosenConnectionFromStartWindow)
{
    Application program({});
    ASSERT_TRUE(program.start());
    auto *const start = visible<StartWindow>();
    ASSERT_NE(start, nullptr);

    Q_EMIT start->connectionRequested(
        DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("library")));
    auto *const window = visible<MainWindow>();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(waitFor([] { return !visible<StartWindow>(); }));
    EXPECT_EQ(window->currentDocument()->status().database, QStringLiteral("library"));

    Q_EMIT window->connectionsRequested();
    EXPECT_NE(visible<StartWindow>(), nullptr);
    visible<StartWindow>()->close();
    closeMainWindow();
}

TEST(DesktopApplication, OpensTheSampleServerAndTheFilesOfItsCommandLine)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("a.sql")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("SELECT 1");
    file.close();
    Options options;
    options.useSampleServer = true;
    options.files = QStringList{file.fileName()};
    Application program(options);
    ASSERT_TRUE(program.start());
    ASSERT_TRUE(waitFor([] { return visible<MainWindow>() != nullptr; }));
    MainWindow &window = *visible<MainWindow>();
    EXPECT_EQ(window.currentDocument()->filePath(), file.fileName());
    const QAbstractItemModel &tree = *window.explorer()->view()->model();
    EXPECT_TRUE(waitFor([&] { return tree.rowCount(tree.index(0, 0)) == 2; })) << "library and shop";
    closeMainWindow();
}

TEST(DesktopApplication, ReturnsToTheConnectionsOnDisconnect)
{
    Application program({});
    ASSERT_TRUE(program.start());
    MainWindow *const window = program.openConnection(
        *DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("library")));
    ASSERT_TRUE(WindowTesting::settle());
    window->actions()->action(QStringLiteral("disconnect"))->trigger();
    ASSERT_TRUE(waitFor([] { return !visible<MainWindow>(); }));
    ASSERT_NE(visible<StartWindow>(), nullptr);
    visible<StartWindow>()->close();
    EXPECT_TRUE(WindowTesting::settle());
}

TEST(DesktopApplication, MovesATabToANewWindow)
{
    Application program({});
    ASSERT_TRUE(program.start());
    const VantorDBCPtr details =
        DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("library"));
    details->setConnectionId(QStringLiteral("moved-tab"));
    const QPointer first = program.openConnection(*details);
    QueryTab *const query = first->addQueryTab(*details, QStringLiteral("SELECT 1"), QStringLiteral("Moved"));
    first->actions()->action(QStringLiteral("moveTab"))->trigger();
    const QPointer second = qobject_cast<MainWindow *>(query->window());
    ASSERT_TRUE(second);
    EXPECT_NE(second, first);
    EXPECT_EQ(second->documents(), QList<KNDocumentTab *>{query});
    EXPECT_EQ(query->text(), QStringLiteral("SELECT 1"));
    EXPECT_FALSE(first->documents().contains(query));
    for (const QPointer<MainWindow> &window : {first, second})
        window->close();
    EXPECT_TRUE(waitFor([&] { return !first && !second; }));
    EXPECT_TRUE(WindowTesting::settle());
}
