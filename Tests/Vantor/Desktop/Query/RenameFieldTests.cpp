#include "Desktop/Main/MainWindowActions.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Rename/KNRenameField.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QLineEdit>
#include <QStatusBar>

namespace RenameFieldTests {

/// The editor of a window, used with real keys.
class RenameInAnEditor : public testing::Test
{
protected:
    RenameInAnEditor()
    {
        window.resize(900, 600);
        window.show();
        window.activateWindow();
        window.newQuery();
        editor = DesktopTesting::currentQuery(window)->editor();
        editor->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    /// Presses F2 at the bar in the text.
    void open(const char *marked)
    {
        QString text = QString::fromUtf8(marked);
        const qsizetype caret = text.indexOf(u'|');
        editor->setWholeText(text.remove(u'|'));
        editor->selectRange({caret, 0});
        EXPECT_TRUE(WindowTesting::settle()); // the editor reports where its cursor is
        QTest::keyClick(editor, Qt::Key_F2);
    }
    KNRenameField *field() const { return editor->findChild<KNRenameField *>(); }
    bool isOpen() const { return field() && field()->isVisible(); }
    void enter(const char *name)
    {
        ASSERT_TRUE(isOpen());
        field()->field()->clear();
        QTest::keyClicks(field()->field(), QString::fromUtf8(name));
        QTest::keyClick(field()->field(), Qt::Key_Return);
    }
    std::string text() const { return editor->wholeText().toStdString(); }

    MainWindow window{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
    KNSQLEditor *editor = nullptr;
};

TEST_F(RenameInAnEditor, ReplacesAllPlacesInOneStep)
{
    open("SELECT o.Id FROM Orders o WHERE |o.Id = 1");
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(field()->field()->text(), QStringLiteral("o"));
    EXPECT_EQ(field()->field()->selectedText(), QStringLiteral("o"));
    EXPECT_EQ(field()->message(), QStringLiteral("3 places"));
    enter("orders_1");
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(), "SELECT orders_1.Id FROM Orders orders_1 WHERE orders_1.Id = 1");
    EXPECT_EQ(editor->selectedRange(), (KNRange{54, 0}));
    EXPECT_TRUE(editor->hasFocus());
    editor->undo();
    EXPECT_EQ(text(), "SELECT o.Id FROM Orders o WHERE o.Id = 1");
    EXPECT_FALSE(editor->isUndoAvailable());
}

TEST_F(RenameInAnEditor, QuotesTheNewNameWhereNeeded)
{
    open("SELECT |o.Id FROM Orders o");
    enter("my order");
    EXPECT_EQ(text(), "SELECT [my order].Id FROM Orders [my order]");
    open("SELECT |o.Id FROM Orders o");
    enter("[select]");
    EXPECT_EQ(text(), "SELECT [select].Id FROM Orders [select]");
}

TEST_F(RenameInAnEditor, RefusesWhatIsNoName)
{
    open("DECLARE |@a int; SELECT @a, @b");
    for (const char *const name : {"", "@a b", "@@a", "@"}) {
        enter(name);
        EXPECT_TRUE(isOpen()) << name;
        EXPECT_EQ(field()->message(), QStringLiteral("This is not a name.")) << name;
    }
    enter("@B");
    EXPECT_EQ(field()->message(), QStringLiteral("@B exists already."));
    EXPECT_EQ(text(), "DECLARE @a int; SELECT @a, @b");
    enter("count");
    EXPECT_EQ(text(), "DECLARE @count int; SELECT @count, @b");
    open("SELECT |a.x FROM t a JOIN s b ON b.x = a.x");
    enter("b");
    EXPECT_EQ(field()->message(), QStringLiteral("b exists already."));
    enter("");
    EXPECT_EQ(field()->message(), QStringLiteral("This is not a name."));
    EXPECT_EQ(text(), "SELECT a.x FROM t a JOIN s b ON b.x = a.x");
}

TEST_F(RenameInAnEditor, EscapeReturnsToTheText)
{
    open("SELECT |o.Id FROM Orders o");
    ASSERT_TRUE(isOpen());
    QTest::keyClicks(field()->field(), QStringLiteral("x"));
    QTest::keyClick(field()->field(), Qt::Key_PageDown); // means nothing in the field
    EXPECT_EQ(editor->selectedRange(), (KNRange{7, 0}));
    QTest::keyClick(field()->field(), Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(editor->hasFocus());
    EXPECT_EQ(text(), "SELECT o.Id FROM Orders o");
}

TEST_F(RenameInAnEditor, SaysThatThereIsNothingToRename)
{
    open("SELECT o.|Id FROM Orders o");
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(window.statusBar()->currentMessage(),
              QStringLiteral("There is no alias and no variable at the cursor."));
    EXPECT_EQ(text(), "SELECT o.Id FROM Orders o");
}

TEST_F(RenameInAnEditor, IsSeenInTheWindowAndNamed)
{
    open("SELECT |o.Id FROM Orders o");
    ASSERT_TRUE(isOpen());
    EXPECT_TRUE(editor->viewport()->rect().contains(field()->geometry()));
    EXPECT_EQ(field()->field()->accessibleName(), QStringLiteral("New name"));
}

} // namespace RenameFieldTests
