#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"
#include "UI/Results/KNResultFindBar.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QShortcut>

using namespace ResultTesting;
using namespace WindowTesting;

namespace {

using Place = QPair<int, int>;

/// A focused section.
class Searched
{
public:
    explicit Searched(const KNDatabaseResultSetPtr &result)
        : model(result, std::make_shared<ResultSetViewControllerHelper>())
        , section(QStringLiteral("Result 1"), model, FakeDatabase::Settings(m_server), &window)
        , bar(*section.findBar())
    {
        model.showPublishedRows();
        window.resize(600, 400);
        section.resize(600, 400);
        window.show();
        QApplication::setActiveWindow(&window);
        section.grid()->setFocus();
    }

    void type(const char *text)
    {
        bar.field()->clear();
        QTest::keyClicks(bar.field(), QString::fromUtf8(text));
        EXPECT_TRUE(settled());
    }
    void press(QWidget *widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(widget, key, modifiers);
        EXPECT_TRUE(settled());
    }
    bool settled()
    {
        QTest::qWait(250); // longer than the pause after a key
        return waitFor([&] { return !bar.isSearching(); });
    }
    Place current() const
    {
        return {section.grid()->currentIndex().row(), section.grid()->currentIndex().column()};
    }

private:
    FakeDatabase::Server m_server;

public:
    QWidget window;
    KNResultTableModel model;
    KNResultSection section;
    KNResultFindBar &bar;
};

} // namespace

TEST(ResultFindBar, OpensWithCtrlFInTheGridAndClosesWithEscape)
{
    Searched shown(numberedRows(10));
    EXPECT_FALSE(shown.bar.isVisible());
    QTest::keyClick(shown.section.grid(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(shown.bar.isVisible());
    EXPECT_TRUE(shown.bar.field()->hasFocus());
    int escapes = 0;
    QShortcut cancel(QKeySequence(Qt::Key_Escape), &shown.window);
    QObject::connect(&cancel, &QShortcut::activated, &shown.window, [&] { ++escapes; });
    QTest::keyClick(shown.bar.field(), Qt::Key_Escape);
    EXPECT_FALSE(shown.bar.isVisible());
    EXPECT_TRUE(shown.section.grid()->hasFocus());
    EXPECT_EQ(escapes, 0);
}

TEST(ResultFindBar, MovesToMatchesAndWrapsAround)
{
    Searched shown(numberedRows(100));
    shown.section.grid()->setCurrentIndex(shown.model.index(50, 0));
    shown.bar.open();
    shown.type("row 9");
    EXPECT_EQ(shown.current(), Place(90, 1));
    EXPECT_EQ(shown.bar.message(), QStringLiteral("2 of 11"));
    shown.press(shown.bar.field(), Qt::Key_Return);
    EXPECT_EQ(shown.current(), Place(91, 1));
    shown.press(shown.bar.field(), Qt::Key_Return, Qt::ShiftModifier);
    shown.press(shown.bar.field(), Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(shown.current(), Place(9, 1));
    shown.bar.findPrevious();
    EXPECT_EQ(shown.current(), Place(99, 1));
    EXPECT_EQ(shown.bar.message(), QStringLiteral("11 of 11"));
    shown.press(shown.section.grid(), Qt::Key_F3);
    EXPECT_EQ(shown.current(), Place(9, 1));
    EXPECT_EQ(shown.bar.message(), QStringLiteral("1 of 11"));
    shown.section.grid()->setCurrentIndex(shown.model.index(0, 0));
    EXPECT_EQ(shown.bar.message(), QStringLiteral("11 matches"));
}

TEST(ResultFindBar, RegardsCaseOnDemandAndSaysWhenNothingMatches)
{
    Searched shown(result({QStringLiteral("a")}, {{text("Anna")}, {text("anna")}}));
    shown.bar.open();
    shown.type("anna");
    EXPECT_EQ(shown.bar.message(), QStringLiteral("1 of 2"));
    shown.bar.matchesCase()->setChecked(true);
    EXPECT_TRUE(shown.settled());
    EXPECT_EQ(shown.bar.message(), QStringLiteral("1 of 1"));
    EXPECT_EQ(shown.current(), Place(1, 0));
    shown.type("zzz");
    EXPECT_EQ(shown.bar.message(), QStringLiteral("No matches"));
    EXPECT_EQ(shown.current(), Place(1, 0));
}

TEST(ResultFindBar, FindsInTheRowsThatAreShownNow)
{
    Searched shown(numberedRows(100));
    shown.bar.open();
    shown.type("row 9");
    ASSERT_TRUE(shown.model.arrange({.sortColumn = 0, .sortOrder = Qt::DescendingOrder}));
    ASSERT_TRUE(waitFor([&] { return !shown.model.isArranging(); }));
    EXPECT_TRUE(shown.settled());
    shown.bar.findNext();
    EXPECT_TRUE(shown.settled());
    // After sorting, the first row is the current one.
    EXPECT_EQ(shown.current(), Place(1, 1));
    EXPECT_EQ(shown.model.cell(1, 1).text, QStringLiteral("row 98"));
    EXPECT_EQ(shown.bar.message(), QStringLiteral("2 of 11"));
}

TEST(ResultFindBar, SearchesAMillionRowsInTheBackgroundAndCanBeCancelled)
{
    Searched shown(numberedRows(1'000'000));
    WatchedApplication &application = WatchedApplication::instance();
    application.beginWatch();
    shown.bar.open();
    shown.bar.field()->setText(QStringLiteral("99999"));
    ASSERT_TRUE(waitFor([&] { return shown.bar.isSearching(); }));
    EXPECT_EQ(shown.bar.message(), QStringLiteral("Searching…"));
    shown.bar.cancel();
    EXPECT_FALSE(shown.bar.isSearching());
    EXPECT_EQ(shown.bar.message(), QStringLiteral("Cancelled"));
    shown.bar.findNext();
    ASSERT_TRUE(waitFor([&] { return !shown.bar.isSearching(); }));
    EXPECT_EQ(shown.bar.message(), QStringLiteral("1 of 38"));
    EXPECT_EQ(shown.current(), Place(99'999, 0));
    EXPECT_LT(application.longestCall().milliseconds, WatchedApplication::LongestAllowed)
        << application.longestCall().what;
}

TEST(ResultFindBar, AsksForATextWhenThereIsNone)
{
    Searched shown(numberedRows(10));
    QTest::keyClick(shown.section.grid(), Qt::Key_F3);
    EXPECT_TRUE(shown.bar.isVisible());
    EXPECT_TRUE(shown.bar.field()->hasFocus());
}
