#include "Desktop/Query/MessagesView.h"
#include "Desktop/Query/QueryTab.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "UI/Results/KNResultsPane.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QTextBlock>

namespace {

using WindowTesting::waitFor;

/// A tab on the sample server that runs scripts with errors.
class ScriptErrors : public testing::Test
{
protected:
    ScriptErrors()
    {
        RecordingAlerts::install();
        tab.resize(800, 600);
        tab.show();
    }
    ~ScriptErrors() override { KNPreferences().save(); }

    void finish()
    {
        ASSERT_TRUE(waitFor([&] { return !tab.isRunning() && tab.messages()->isComplete(); }));
    }
    void run(const char *text)
    {
        tab.setText(QString::fromUtf8(text));
        tab.run();
        finish();
    }
    QStringList messages() const { return tab.messages()->toPlainText().split(QLatin1Char('\n')); }
    void activateLastMessage()
    {
        tab.messages()->moveCursor(QTextCursor::End);
        QTest::keyClick(tab.messages(), Qt::Key_Return);
    }
    KNRange rangeOf(const char *word) const
    {
        const QString text = QString::fromUtf8(word);
        return {tab.text().lastIndexOf(text), text.size()};
    }

    QueryTab tab{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
};

} // namespace

TEST_F(ScriptErrors, BeforeTheFirstResultStopTheScript)
{
    run("RAISERROR('one', 16, 1)\nGO\nPRINT 'two'\nGO\nPRINT 'three'\nGO 2\n");
    EXPECT_EQ(messages().last(), QStringLiteral("3 batches were not run. Run them"));
    EXPECT_FALSE(messages().contains(QStringLiteral("two")));
}

TEST_F(ScriptErrors, AfterTheFirstResultStopTheScriptAsWell)
{
    run("SELECT 1 AS a RAISERROR('late', 16, 1) SELECT 2 AS a\nGO\nPRINT 'two'");
    EXPECT_EQ(messages().last(), QStringLiteral("1 batch was not run. Run it"));
    EXPECT_EQ(tab.status().rowCount, 2) << "the rest of the batch is run by the server";
}

TEST_F(ScriptErrors, CountTheRepetitionsThatAreLeft)
{
    run("CREATE TABLE #n (i int)\nGO\nINSERT #n VALUES (1)\nIF (SELECT COUNT(*) FROM #n) = 2 RAISERROR('no', "
        "16, 1)\nGO 5\nSELECT COUNT(*) AS n FROM #n");
    EXPECT_EQ(messages().last(), QStringLiteral("4 batches were not run. Run them"));
}

TEST_F(ScriptErrors, AreFollowedByTheRestWhenTheUserAsksForIt)
{
    run("CREATE TABLE #n (i int)\nGO\nINSERT #n VALUES (1)\nIF (SELECT COUNT(*) FROM #n) = 2 RAISERROR('no', "
        "16, 1)\nGO 5\nPRINT 'end'");
    activateLastMessage();
    EXPECT_TRUE(tab.isRunning());
    finish();
    EXPECT_EQ(messages().last(), QStringLiteral("end"));
    EXPECT_EQ(messages().filter(QStringLiteral("1 row")).size(), 3) << "5 repetitions without the first 2";
    activateLastMessage();
    EXPECT_FALSE(tab.isRunning()) << "nothing is left";
}

TEST_F(ScriptErrors, AreFollowedByTheRestAtAClickOnTheLinkOnly)
{
    run("RAISERROR('one', 16, 1)\nGO\nPRINT 'two'");
    MessagesView &view = *tab.messages();
    const auto clickOn = [&](const char *word) {
        QTextCursor cursor = view.document()->find(QString::fromLatin1(word));
        cursor.setPosition(cursor.selectionStart() + 2);
        view.setTextCursor(cursor);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.cursorRect().center());
    };
    clickOn("batch was");
    EXPECT_FALSE(tab.isRunning());
    clickOn("Run it");
    EXPECT_TRUE(tab.isRunning());
    finish();
    EXPECT_EQ(messages(), QStringList{QStringLiteral("two")});
}

TEST_F(ScriptErrors, DoNotStopAScriptThatContinues)
{
    KNPreferences preferences;
    preferences.continuesAfterError = true;
    preferences.save();
    EXPECT_TRUE(KNPreferences::current().continuesAfterError);
    run("RAISERROR('one', 16, 1)\nGO\nSELECT nope FROM Customers\nGO\nPRINT 'three'");
    EXPECT_EQ(messages().last(), QStringLiteral("three"));
    EXPECT_EQ(tab.messages()->errorCount(), 2);
    EXPECT_EQ(tab.editor()->errorLines(), (QList<int>{1, 3}));
    EXPECT_EQ(tab.editor()->errorMarks(), QList<KNRange>{rangeOf("nope")});
}

TEST_F(ScriptErrors, AreAllMarked)
{
    run("PRINT 'x'\nRAISERROR('first', 16, 1)\nRAISERROR('second', 16, 1)\nSELECT third_one FROM Customers");
    EXPECT_EQ(tab.editor()->errorLines(), (QList<int>{2, 3, 4}));
    EXPECT_EQ(tab.editor()->errorMarks(), QList<KNRange>{rangeOf("third_one")});
}

TEST_F(ScriptErrors, OfAWordThatOccursOnceOnItsLineMarkIt)
{
    run("SELECT CompanyName AS nope FROM Customers\nSELECT nope FROM Customers");
    EXPECT_EQ(tab.editor()->errorMarks(), QList<KNRange>{rangeOf("nope")});
    EXPECT_EQ(tab.editor()->errorLines(), QList<int>{2});
}

TEST_F(ScriptErrors, OfAProcedureLeadToItsCall)
{
    run("CREATE PROCEDURE dbo.LeadsToItsCall AS\nPRINT 'in'\nSELECT nope FROM Customers");
    ASSERT_EQ(tab.messages()->errorCount(), 0) << tab.messages()->toPlainText().toStdString();
    run("SELECT 1 AS a\n\nEXEC dbo.[LeadsToItsCall]");
    ASSERT_TRUE(tab.messages()->toPlainText().contains(QStringLiteral("Procedure LeadsToItsCall, Line 3")))
        << tab.messages()->toPlainText().toStdString();
    EXPECT_EQ(tab.editor()->errorMarks(), QList<KNRange>{rangeOf("[LeadsToItsCall]")});
    EXPECT_EQ(tab.editor()->errorLines(), QList<int>{3});
    tab.messages()->setTextCursor(tab.messages()->document()->find(QStringLiteral("Msg 207")));
    QTest::keyClick(tab.messages(), Qt::Key_Return);
    EXPECT_EQ(tab.editor()->selectedRange(), rangeOf("[LeadsToItsCall]"));
    run("DROP PROCEDURE dbo.LeadsToItsCall");
}
