#include "Database/VantorDatabaseConnectionPool.h"
#include "Desktop/Query/MessagesView.h"
#include "Desktop/Query/QueryTab.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "Vantor/Desktop/DesktopTesting.h"

namespace {

using WindowTesting::settle;
using WindowTesting::waitFor;

/// A tab on the sample server whose text is checked without running it.
class SyntaxCheckInATab : public testing::Test
{
protected:
    SyntaxCheckInATab()
    {
        RecordingAlerts::install();
        tab.resize(800, 600);
        tab.show();
        tab.activateWindow();
        tab.editor()->setFocus();
    }
    ~SyntaxCheckInATab() override { KNPreferences().save(); }

    void parse(const char *text)
    {
        tab.setText(QString::fromUtf8(text));
        parse();
    }
    void parse()
    {
        ASSERT_TRUE(tab.canPerform(KNDocumentAction::Parse));
        tab.perform(KNDocumentAction::Parse);
        ASSERT_TRUE(settle());
        ASSERT_TRUE(waitFor([&] { return tab.messages()->isComplete(); }));
    }
    QString messages() const { return tab.messages()->toPlainText(); }
    QList<int> marked() const { return tab.editor()->errorLines(); }

    QueryTab tab{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
};

} // namespace

TEST_F(SyntaxCheckInATab, SaysThatCorrectStatementsAreCorrect)
{
    parse("DELETE FROM Orders\nGO\nSELECT 1");
    EXPECT_EQ(messages(), QStringLiteral("The statements are correct."));
    EXPECT_TRUE(tab.messages()->isVisible());
    EXPECT_TRUE(marked().isEmpty());
    EXPECT_FALSE(tab.isRunning());
}

TEST_F(SyntaxCheckInATab, MarksTheErrorsOfAllBatches)
{
    parse("SELECT FROM WHERE\nGO\nSELECT 1\nGO\nUPDATE SET");
    EXPECT_EQ(marked(), QList<int>({1, 5}));
    EXPECT_EQ(tab.messages()->errorCount(), 2);
    EXPECT_TRUE(messages().contains(QStringLiteral("Line 5"))) << messages().toStdString();
    parse("SELECT 1");
    EXPECT_TRUE(marked().isEmpty());
    EXPECT_EQ(tab.messages()->errorCount(), 0);
}

TEST_F(SyntaxCheckInATab, LeavesTheOutcomeOfTheLastRun)
{
    tab.setText(QStringLiteral("SELECT 1"));
    tab.run();
    ASSERT_TRUE(waitFor([&] { return !tab.isRunning(); }));
    EXPECT_EQ(tab.status().outcome, KNDocumentStatus::Outcome::Succeeded);
    parse("SELECT FROM WHERE");
    EXPECT_EQ(tab.messages()->errorCount(), 1);
    EXPECT_EQ(tab.status().outcome, KNDocumentStatus::Outcome::Succeeded);
}

TEST_F(SyntaxCheckInATab, ChecksTheSelectionOnly)
{
    tab.setText(QStringLiteral("SELECT FROM\nSELECT 1\nUPDATE SET\n"));
    tab.editor()->selectRange({12, 8});
    parse();
    EXPECT_EQ(messages(), QStringLiteral("The statements are correct."));
    tab.editor()->selectRange({21, 10});
    parse();
    EXPECT_EQ(marked(), QList<int>{3});
}

TEST_F(SyntaxCheckInATab, ReportsAServerThatIsNotThere)
{
    const auto nowhere = DesktopTesting::settingsFor(quint16(1), QStringLiteral("shop"));
    QueryTab lost(*nowhere);
    lost.setText(QStringLiteral("SELECT 1"));
    lost.perform(KNDocumentAction::Parse);
    ASSERT_TRUE(waitFor([&] { return lost.messages()->errorCount() == 1; }));
    EXPECT_FALSE(lost.messages()->toPlainText().contains(QStringLiteral("correct")));
}

TEST_F(SyntaxCheckInATab, MarksErrorsHalfASecondAfterTheLastKey)
{
    QTest::keyClicks(tab.editor(), QStringLiteral("SELECT FROM WHERE"));
    QTest::qWait(700);
    ASSERT_TRUE(settle());
    EXPECT_TRUE(marked().isEmpty()); // a preference that is off
    KNPreferences preferences;
    preferences.checksWhileTyping = true;
    preferences.save();
    QTest::keyClicks(tab.editor(), QStringLiteral(" "));
    EXPECT_TRUE(marked().isEmpty());
    ASSERT_TRUE(waitFor([&] { return !marked().isEmpty(); }));
    EXPECT_EQ(marked(), QList<int>{1});
    EXPECT_TRUE(messages().isEmpty());
    tab.editor()->selectAll();
    QTest::keyClicks(tab.editor(), QStringLiteral("SELECT 1"));
    QTest::qWait(700);
    ASSERT_TRUE(settle());
    EXPECT_TRUE(marked().isEmpty());
}
