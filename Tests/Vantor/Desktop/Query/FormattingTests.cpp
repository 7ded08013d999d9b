#include "Desktop/Query/QueryTab.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "Vantor/Desktop/DesktopTesting.h"

namespace {

/// A query whose text is formatted.
class FormattingInATab : public testing::Test
{
protected:
    ~FormattingInATab() override { KNPreferences().save(); }

    void format()
    {
        tab.perform(KNDocumentAction::Format);
        ASSERT_TRUE(WindowTesting::settle());
    }

    QueryTab tab{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
};

} // namespace

TEST_F(FormattingInATab, IsOneUndoStepAndKeepsTheCursorAtItsToken)
{
    const QString typed = QStringLiteral("select a,b   from t\nwhere a=1");
    tab.setText(typed);
    tab.editor()->selectRange({typed.indexOf(QStringLiteral("where")), 0});
    format();
    EXPECT_EQ(tab.text(), QStringLiteral("SELECT a, b\nFROM t\nWHERE a = 1"));
    EXPECT_EQ(tab.editor()->selectedRange().location, tab.text().indexOf(QStringLiteral("WHERE")));
    tab.editor()->undo();
    EXPECT_EQ(tab.text(), typed);
}

TEST_F(FormattingInATab, FormatsTheSelectionOnly)
{
    tab.setText(QStringLiteral("select  1\nselect  2\nselect  3"));
    tab.editor()->selectRange({10, 9});
    format();
    EXPECT_EQ(tab.text(), QStringLiteral("select  1\nSELECT 2\nselect  3"));
    EXPECT_EQ(tab.editor()->selectedRange(), (KNRange{10, 8}));
}

TEST_F(FormattingInATab, FollowsThePreferences)
{
    KNPreferences preferences;
    preferences.formatStyle = {.keywordCase = KNSQLFormatStyle::KeywordCase::Lower,
                               .hasLeadingCommas = true,
                               .indent = 2,
                               .width = 40};
    preferences.save();
    EXPECT_EQ(KNPreferences::current().formatStyle, preferences.formatStyle);
    tab.setText(QStringLiteral("SELECT FirstColumn, SecondColumn, ThirdColumn"));
    format();
    EXPECT_EQ(tab.text(), QStringLiteral("select\n  FirstColumn\n  , SecondColumn\n  , ThirdColumn"));
}

TEST_F(FormattingInATab, LeavesATextThatIsEditedMeanwhile)
{
    tab.setText(QStringLiteral("select  1"));
    tab.perform(KNDocumentAction::Format);
    tab.editor()->insertText(QStringLiteral("-- new\n"));
    ASSERT_TRUE(WindowTesting::settle());
    EXPECT_EQ(tab.text(), QStringLiteral("-- new\nselect  1"));
}

TEST_F(FormattingInATab, IsReachedByItsKeys)
{
    MainWindow window(*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop")));
    window.show();
    window.activateWindow();
    window.newQuery();
    QueryTab *const query = DesktopTesting::currentQuery(window);
    query->setText(QStringLiteral("select  1"));
    query->editor()->setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(query->editor(), Qt::Key_K, Qt::ControlModifier);
    QTest::keyClick(query->editor(), Qt::Key_D, Qt::ControlModifier);
    EXPECT_TRUE(WindowTesting::waitFor([&] { return query->text() == QStringLiteral("SELECT 1"); }))
        << query->text().toStdString();
}
