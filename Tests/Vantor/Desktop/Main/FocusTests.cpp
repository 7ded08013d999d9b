#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Query/DatabaseBox.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/Editor/KNFindBar.h"
#include "UI/Editor/KNSQLEditor.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QLineEdit>
#include <QMessageBox>
#include <QTabBar>

namespace {

using WindowTesting::waitFor;

/// A window with three tabs.
class Focus : public testing::Test
{
protected:
    Focus()
    {
        RecordingAlerts::install();
        const VantorDBCPtr details =
            DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
        details->setConnectionId(
            QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()));
        window = new MainWindow(*details);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(waitFor([&] { return window->isActiveWindow(); }));
        window->newQuery();
        window->newQuery();
    }
    ~Focus() override
    {
        delete window;
        EXPECT_TRUE(WindowTesting::settle());
    }
    QueryTab *tab() const { return DesktopTesting::currentQuery(*window); }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    bool isInEditor() const { return tab() && tab()->editor()->hasFocus(); }

    QPointer<MainWindow> window;
};

} // namespace

TEST_F(Focus, IsInTheEditorAfterATabIsClosed)
{
    for (int left = 2; left > 0; --left) {
        press(Qt::Key_W, Qt::ControlModifier);
        ASSERT_TRUE(waitFor([&] { return window->documents().size() == left; }));
        EXPECT_TRUE(isInEditor()) << left;
    }
    press(Qt::Key_W, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return window->documents().isEmpty(); }));
    EXPECT_TRUE(window->explorer()->view()->hasFocus());
}

TEST_F(Focus, IsInTheEditorAfterAChangeOfTabs)
{
    QTabBar *const bar = window->tabs()->tabBar();
    tab()->databaseBox()->setFocus();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(0).center());
    EXPECT_EQ(window->tabs()->currentIndex(), 0);
    EXPECT_TRUE(isInEditor());
    window->explorer()->focusSearchField();
    press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(window->tabs()->currentIndex(), 1);
    EXPECT_TRUE(isInEditor());
}

TEST_F(Focus, LeavesTheDatabaseBoxAtEscapeWithoutAChange)
{
    DatabaseBox *const box = tab()->databaseBox();
    box->showPopup();
    ASSERT_TRUE(waitFor([&] { return box->count() > 0 && !box->isLoading(); }));
    box->setFocus();
    box->lineEdit()->selectAll();
    QTest::keyClicks(box->lineEdit(), QStringLiteral("libr"));
    press(Qt::Key_Escape);
    EXPECT_EQ(box->currentText(), QStringLiteral("shop"));
    EXPECT_TRUE(isInEditor());
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(tab()->status().database, QStringLiteral("shop"));
}

TEST_F(Focus, ReturnsToTheEditorAtEscape)
{
    window->explorer()->focusSearchField();
    press(Qt::Key_Escape);
    EXPECT_TRUE(isInEditor());
    window->explorer()->focusTree();
    press(Qt::Key_Escape);
    EXPECT_TRUE(isInEditor());
}

TEST_F(Focus, ClosesTheFindBarAtEscapeFromTheEditor)
{
    tab()->findBar()->showReplace();
    tab()->editor()->setFocus();
    press(Qt::Key_Escape);
    EXPECT_TRUE(tab()->findBar()->isHidden());
    EXPECT_TRUE(isInEditor());
}

TEST_F(Focus, ClosesAQuestionAtEscapeWithoutAnAnswer)
{
    KNAlerts::setShared(nullptr);
    int answer = 7;
    KNAlerts::shared().ask(
        window, {QStringLiteral("Save?"), {}, {QStringLiteral("Save"), QStringLiteral("Don't Save")}},
        [&](int button) { answer = button; });
    auto *const box = window->findChild<QMessageBox *>();
    ASSERT_NE(box, nullptr);
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_EQ(answer, -1);
    EXPECT_FALSE(box->isVisible());
}
