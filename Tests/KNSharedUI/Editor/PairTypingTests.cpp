#include "Editor/EditorTesting.h"
#include "UI/KNPreferences.h"

namespace PairTypingTests {

using namespace EditorTesting;

/// An editor in which "|" marks the cursor, or two of them the selection; used with real keys.
class PairTyping : public testing::Test
{
protected:
    ~PairTyping() override { KNPreferences().save(); }

    void show(const char *marked)
    {
        QString text = QString::fromUtf8(marked);
        const qsizetype begin = text.indexOf(u'|');
        const qsizetype end = std::max(begin, text.lastIndexOf(u'|') - 1);
        text.remove(u'|');
        editor = editorWith(text);
        editor->selectRange({begin, end - begin});
    }
    std::string shown() const
    {
        QString text = editor->wholeText();
        const KNRange selection = editor->selectedRange();
        if (selection.length > 0)
            text.insert(selection.location + selection.length, u'|');
        return text.insert(selection.location, u'|').toStdString();
    }
    std::string afterTyping(const char *marked, const char *typed)
    {
        show(marked);
        QTest::keyClicks(editor.get(), QString::fromUtf8(typed));
        return shown();
    }
    std::string afterBackspace(const char *marked)
    {
        show(marked);
        QTest::keyClick(editor.get(), Qt::Key_Backspace);
        return shown();
    }

    std::unique_ptr<KNSQLEditor> editor;
};

TEST_F(PairTyping, BringsTheClosingCharacter)
{
    EXPECT_EQ(afterTyping("select count|", "("), "select count(|)");
    EXPECT_EQ(afterTyping("select |", "["), "select [|]");
    EXPECT_EQ(afterTyping("select N|", "'"), "select N'|'");
    EXPECT_EQ(afterTyping("(|)", "("), "((|))");
}

TEST_F(PairTyping, IsOneUndoStep)
{
    show("select |");
    QTest::keyClick(editor.get(), '(');
    editor->undo();
    EXPECT_EQ(shown(), "select |");
    EXPECT_FALSE(editor->isUndoAvailable());
}

TEST_F(PairTyping, StepsOverTheClosingCharacter)
{
    EXPECT_EQ(afterTyping("|", "('a')"), "('a')|");
    EXPECT_EQ(afterTyping("|", "[a b]"), "[a b]|");
    EXPECT_EQ(afterTyping("f(|)", ")"), "f()|");
    EXPECT_EQ(afterTyping("f(|", ")"), "f()|");
}

TEST_F(PairTyping, TypesADoubledQuoteInAString)
{
    EXPECT_EQ(afterTyping("|", "'it''s'"), "'it''s'|");
}

TEST_F(PairTyping, StaysAwayFromStringsCommentsAndNames)
{
    EXPECT_EQ(afterTyping("'a |'", "("), "'a (|'");
    EXPECT_EQ(afterTyping("'a |)'", ")"), "'a )|)'");
    EXPECT_EQ(afterTyping("'a |", "'"), "'a '|");
    EXPECT_EQ(afterTyping("-- it|", "'"), "-- it'|");
    EXPECT_EQ(afterTyping("-- a |)", ")"), "-- a )|)");
    EXPECT_EQ(afterTyping("/* /* */ a |", "("), "/* /* */ a (|");
    EXPECT_EQ(afterTyping("/* a */ |", "("), "/* a */ (|)");
    EXPECT_EQ(afterTyping("[a |]", "("), "[a (|]");
    EXPECT_EQ(afterTyping("[a |]", "'"), "[a '|]");
    EXPECT_EQ(afterTyping("\"a |\"", "["), "\"a [|\"");
}

TEST_F(PairTyping, KnowsElementsThatBeganInEarlierLines)
{
    EXPECT_EQ(afterTyping("select 'a\nb |", "("), "select 'a\nb (|");
    EXPECT_EQ(afterTyping("/*\n|", "("), "/*\n(|");
    EXPECT_EQ(afterTyping("/*\n*/\n|", "("), "/*\n*/\n(|)");
    EXPECT_EQ(afterTyping("-- a\n|", "("), "-- a\n(|)");
}

TEST_F(PairTyping, BringsNothingBeforeAWord)
{
    EXPECT_EQ(afterTyping("select |a", "'"), "select '|a");
    EXPECT_EQ(afterTyping("where |a = 1", "("), "where (|a = 1");
    EXPECT_EQ(afterTyping("select |\xC3\xA4", "'"), "select '|\xC3\xA4");
    EXPECT_EQ(afterTyping("select |, b", "'"), "select '|', b");
}

TEST_F(PairTyping, BackspaceRemovesAnEmptyPair)
{
    EXPECT_EQ(afterBackspace("f(|)"), "f|");
    EXPECT_EQ(afterBackspace("[|]"), "|");
    EXPECT_EQ(afterBackspace("N'|'"), "N|");
    EXPECT_EQ(afterBackspace("f(a|)"), "f(|)");
    EXPECT_EQ(afterBackspace("'(|)'"), "'|)'");
    EXPECT_EQ(afterBackspace("-- (|)"), "-- |)");
    EXPECT_EQ(afterBackspace("'it''|'"), "'it'|'");
    EXPECT_EQ(afterBackspace("|"), "|");
}

TEST_F(PairTyping, PutsASelectionBetweenThePair)
{
    EXPECT_EQ(afterTyping("select |a + b|", "("), "select (|a + b|)");
    EXPECT_EQ(afterTyping("select |Order Date|", "["), "select [|Order Date|]");
    EXPECT_EQ(afterTyping("select |a|", "'"), "select '|a|'");
    EXPECT_EQ(afterTyping("select |a|", ")"), "select )|");
    EXPECT_EQ(afterTyping("'|a|'", "("), "'(|'");
    show("select |a + b|");
    QTest::keyClick(editor.get(), '(');
    editor->undo();
    EXPECT_EQ(editor->wholeText().toStdString(), "select a + b");
    EXPECT_FALSE(editor->isUndoAvailable());
}

TEST_F(PairTyping, LeavesSeveralCursorsAlone)
{
    show("|a\nb");
    editor->SendScintilla(QsciScintillaBase::SCI_SETSELECTION, 1UL, 1L);
    editor->SendScintilla(QsciScintillaBase::SCI_ADDSELECTION, 3UL, 3L);
    QTest::keyClick(editor.get(), '(');
    EXPECT_EQ(editor->wholeText().toStdString(), "a(\nb(");
    show("|ab\ncd");
    editor->SendScintilla(QsciScintillaBase::SCI_SETRECTANGULARSELECTIONANCHOR, 0UL);
    editor->SendScintilla(QsciScintillaBase::SCI_SETRECTANGULARSELECTIONCARET, 4UL);
    QTest::keyClick(editor.get(), '(');
    EXPECT_EQ(editor->wholeText().toStdString(), "(b\n(d");
}

TEST_F(PairTyping, PreferenceTurnsItOff)
{
    KNPreferences preferences = KNPreferences::current();
    EXPECT_TRUE(preferences.closesPairs);
    preferences.closesPairs = false;
    preferences.save();
    EXPECT_EQ(afterTyping("f|", "("), "f(|");
    EXPECT_EQ(afterTyping("f(|)", ")"), "f()|)");
    EXPECT_EQ(afterBackspace("f(|)"), "f|)");
}

} // namespace PairTypingTests
