#include "Desktop/Main/MainWindowActions.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "Vantor/Desktop/DesktopTesting.h"

namespace TextCommandTests {

/// The editor of a window, used with real keys.
class TextCommands : public testing::Test
{
protected:
    TextCommands()
    {
        window.show();
        window.activateWindow();
        window.newQuery();
        editor = DesktopTesting::currentQuery(window)->editor();
        editor->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void show(const QString &text, KNRange selection)
    {
        editor->setWholeText(text);
        editor->selectRange(selection);
    }
    void press(int key, Qt::KeyboardModifiers modifiers)
    {
        QTest::keyClick(editor, static_cast<Qt::Key>(key), modifiers);
    }
    void upperCase() { press(Qt::Key_U, Qt::ControlModifier | Qt::ShiftModifier); }
    void lowerCase() { press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier); }
    void moveUp() { press(Qt::Key_Up, Qt::AltModifier); }
    void moveDown() { press(Qt::Key_Down, Qt::AltModifier); }
    void duplicate() { press(Qt::Key_D, Qt::ControlModifier); }
    QString text() const { return editor->wholeText(); }
    KNRange selection() const { return editor->selectedRange(); }

    MainWindow window{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
    KNSQLEditor *editor = nullptr;
};

TEST_F(TextCommands, ChangeTheCaseOfTheSelectionInOneStep)
{
    show(q("select Name from t"), {0, 11});
    upperCase();
    EXPECT_EQ(text(), q("SELECT NAME from t"));
    EXPECT_EQ(selection(), (KNRange{0, 11}));
    lowerCase();
    EXPECT_EQ(text(), q("select name from t"));
    editor->undo();
    EXPECT_EQ(text(), q("SELECT NAME from t"));
    editor->undo();
    EXPECT_EQ(text(), q("select Name from t"));
    EXPECT_FALSE(editor->isUndoAvailable());
}

TEST_F(TextCommands, ChangeTheCaseOfTheWordAtTheCursor)
{
    show(q("select name from t"), {9, 0});
    upperCase();
    EXPECT_EQ(text(), q("select NAME from t"));
    EXPECT_EQ(selection(), (KNRange{9, 0}));
    show(q("a  b"), {2, 0}); // no word
    upperCase();
    EXPECT_EQ(text(), q("a  b"));
    EXPECT_FALSE(editor->isUndoAvailable());
}

TEST_F(TextCommands, ChangeTheCaseOfLettersOutsideAscii)
{
    show(q("N'\xC3\xA4\xC3\x9F\xCE\xBB\xF0\x9F\x98\x80' x"), {2, 5}); // äßλ and a face of two units
    upperCase();
    EXPECT_EQ(text(), q("N'\xC3\x84SS\xCE\x9B\xF0\x9F\x98\x80' x"));
    EXPECT_EQ(selection(), (KNRange{2, 6}));
    lowerCase();
    EXPECT_EQ(text(), q("N'\xC3\xA4ss\xCE\xBB\xF0\x9F\x98\x80' x"));
    // The small letter needs three bytes and the large one two: the selection still ends where it did.
    show(q("\xE2\xB1\xA5 b"), {0, 3});
    upperCase();
    EXPECT_EQ(text(), q("\xC8\xBA B"));
    EXPECT_EQ(selection(), (KNRange{0, 3}));
}

TEST_F(TextCommands, ChangeTheCaseOfAllSelections)
{
    show(q("ab\ncd"), {0, 1});
    editor->SendScintilla(QsciScintillaBase::SCI_ADDSELECTION, 4UL, 3L);
    upperCase();
    EXPECT_EQ(text(), q("Ab\nCd"));
    EXPECT_EQ(editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS), 2);
    editor->undo();
    EXPECT_EQ(text(), q("ab\ncd"));
}

TEST_F(TextCommands, MoveTheLineOfTheCursor)
{
    show(q("one\ntwo\nthree"), {5, 0});
    moveUp();
    EXPECT_EQ(text(), q("two\none\nthree"));
    EXPECT_EQ(selection(), (KNRange{1, 0}));
    moveUp(); // it is the first one
    EXPECT_EQ(text(), q("two\none\nthree"));
    moveDown();
    moveDown();
    EXPECT_EQ(text(), q("one\nthree\ntwo"));
    EXPECT_EQ(selection(), (KNRange{11, 0}));
    moveDown();
    EXPECT_EQ(text(), q("one\nthree\ntwo"));
    editor->undo();
    EXPECT_EQ(text(), q("one\ntwo\nthree"));
}

TEST_F(TextCommands, MoveTheSelectedLinesAndKeepLineEndsInTheirPlaces)
{
    show(q("one\r\ntwo\nthree\rfour"), {6, 6}); // of "two" and "three"
    moveDown();
    EXPECT_EQ(text(), q("one\r\nfour\rtwo\nthree"));
    EXPECT_EQ(editor->textOfRange(selection()), q("wo\nthr"));
    moveUp();
    EXPECT_EQ(text(), q("one\r\ntwo\nthree\rfour"));
}

TEST_F(TextCommands, DuplicateTheLineOrTheSelection)
{
    show(q("one\ntwo"), {1, 0});
    duplicate();
    EXPECT_EQ(text(), q("one\none\ntwo"));
    editor->undo();
    EXPECT_EQ(text(), q("one\ntwo"));
    editor->selectRange({0, 2});
    duplicate();
    EXPECT_EQ(text(), q("onone\ntwo"));
    show(q("last"), {0, 0});
    duplicate();
    EXPECT_EQ(text(), q("last\nlast"));
}

TEST_F(TextCommands, LeaveTheirKeysToOtherWidgets)
{
    show(q("one\ntwo"), {5, 0});
    window.actions()->action(q("find"))->trigger();
    QWidget *const field = QApplication::focusWidget();
    ASSERT_NE(field, editor);
    QTest::keyClick(field, Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(field, Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(text(), q("one\ntwo"));
}

TEST_F(TextCommands, BelongToTheTabInFront)
{
    show(q("one\ntwo"), {5, 0});
    window.newQuery();
    KNSQLEditor *const second = DesktopTesting::currentQuery(window)->editor();
    ASSERT_NE(second, editor);
    second->setFocus();
    second->setWholeText(q("a\nb"));
    second->selectRange({2, 0});
    QTest::keyClick(second, Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(second->wholeText(), q("b\na"));
    EXPECT_EQ(text(), q("one\ntwo"));
}

} // namespace TextCommandTests
