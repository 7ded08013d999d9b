#include "Editor/EditorTesting.h"
#include "UI/KNPreferences.h"

#include <QClipboard>
#include <QDragEnterEvent>
#include <QInputDialog>
#include <QMimeData>

using namespace EditorTesting;

namespace {

void selectAllOf(KNSQLEditor &editor, const QString &piece)
{
    editor.selectRange({editor.wholeText().indexOf(piece), piece.size()});
}

} // namespace

TEST(SQLEditor, KeepsEveryCharacterOfATextAndItsLineEnds)
{
    for (const QString &text :
         {QStringLiteral("a\r\nb\nc\rd"), QString(QChar(QChar::ByteOrderMark)) + QStringLiteral("x"),
          QStringLiteral("a") + QChar(QChar::Null) + QStringLiteral("b"), Emoji + QString::fromUtf8("é€"),
          QString()}) {
        const auto editor = editorWith(text);
        EXPECT_EQ(editor->wholeText(), text);
        EXPECT_FALSE(editor->isModified());
        EXPECT_FALSE(editor->isUndoAvailable());
    }
}

TEST(SQLEditor, EntersTheLineEndsOfItsText)
{
    const auto editor = editorWith(QStringLiteral("a\r\nb"));
    QTest::keyClick(editor.get(), Qt::Key_Return);
    EXPECT_EQ(editor->wholeText(), QStringLiteral("\r\na\r\nb"));
}

TEST(SQLEditor, CountsPositionsInUtf16Units)
{
    const QString text =
        QChar(QChar::ByteOrderMark) + Emoji + QString::fromUtf8("é\n€x") + Emoji + QStringLiteral("yz");
    const auto editor = editorWith(text);
    for (qsizetype place = 0; place <= text.size(); ++place) {
        if (place < text.size() && text[place].isLowSurrogate())
            continue;
        editor->selectRange({place, 0});
        EXPECT_EQ(editor->selectedRange(), (KNRange{place, 0}));
        EXPECT_EQ(editor->textOfRange({0, place}), text.left(place));
    }
    selectAllOf(*editor, QStringLiteral("yz"));
    EXPECT_EQ(editor->selectedText(), QStringLiteral("yz"));
    editor->selectRange({text.size() + 5, 10});
    EXPECT_EQ(editor->selectedRange(), (KNRange{text.size(), 0}));
    editor->selectRange({text.size() - 1, 99});
    EXPECT_EQ(editor->selectedText(), QStringLiteral("z"));
}

TEST(SQLEditor, MarksAnErrorUntilTheNextEdit)
{
    const QString text = Emoji + QStringLiteral("\nselect ü, wrong from t");
    const auto editor = editorWith(text);
    const KNRange wrong{text.indexOf(QStringLiteral("wrong")), 5};
    editor->markError(wrong);
    EXPECT_EQ(editor->errorLines(), QList<int>{2});
    EXPECT_EQ(editor->errorMarks(), QList<KNRange>{wrong});
    const auto marked = [&](qsizetype unit) {
        const auto position = text.left(unit).toUtf8().size();
        return editor->SendScintilla(QsciScintillaBase::SCI_INDICATORVALUEAT, 8UL,
                                     static_cast<long>(position)) != 0;
    };
    EXPECT_FALSE(marked(wrong.location - 1));
    EXPECT_TRUE(marked(wrong.location));
    EXPECT_TRUE(marked(wrong.location + 4));
    EXPECT_FALSE(marked(wrong.location + 5));

    QTest::keyClick(editor.get(), 'x');
    EXPECT_EQ(editor->errorLines(), QList<int>());
    EXPECT_TRUE(editor->errorMarks().isEmpty());
    EXPECT_EQ(editor->SendScintilla(QsciScintillaBase::SCI_INDICATOREND, 8UL, 0L), 0);
}

TEST(SQLEditor, TogglesLineCommentsOfTheSelectedLines)
{
    const auto editor = editorWith(QStringLiteral("a\n\tb\n\nc\n"));
    editor->selectRange({0, 5}); // to the beginning of the empty line
    editor->toggleComment();
    EXPECT_EQ(editor->wholeText(), QStringLiteral("-- a\n\t-- b\n\nc\n"));
    editor->toggleComment();
    EXPECT_EQ(editor->wholeText(), QStringLiteral("a\n\tb\n\nc\n"));
    editor->selectAll();
    QTest::keySequence(editor.get(), QKeySequence(QStringLiteral("Ctrl+K, Ctrl+C")));
    EXPECT_EQ(editor->wholeText(), QStringLiteral("-- a\n\t-- b\n\n-- c\n"));
    editor->undo();
    EXPECT_EQ(editor->wholeText(), QStringLiteral("a\n\tb\n\nc\n"));
    editor->setWholeText(QStringLiteral("--a\nb"));
    QTest::keySequence(editor.get(), QKeySequence(QStringLiteral("Ctrl+K, U")));
    EXPECT_EQ(editor->wholeText(), QStringLiteral("a\nb"));
}

TEST(SQLEditor, GoesToRequestedLine)
{
    const auto editor = editorWith(QStringLiteral("1\n2\n3\n4"));
    editor->askForLine();
    auto *const dialog = editor->findChild<QInputDialog *>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->intMaximum(), 4);
    dialog->setIntValue(3);
    dialog->accept();
    EXPECT_EQ(editor->selectedRange(), (KNRange{4, 0}));
    editor->goToLine(99);
    EXPECT_EQ(editor->selectedRange(), (KNRange{6, 0}));
    editor->goToLine(0);
    EXPECT_EQ(editor->selectedRange(), (KNRange{0, 0}));
}

TEST(SQLEditor, GoesIntoAFoldThatHidesItsLine)
{
    const auto editor = editorWith(QStringLiteral("begin\n a\n b\nend"));
    styleEverything(*editor);
    editor->foldLine(0);
    ASSERT_FALSE(editor->SendScintilla(QsciScintillaBase::SCI_GETLINEVISIBLE, 2UL));
    editor->goToLine(3);
    EXPECT_TRUE(editor->SendScintilla(QsciScintillaBase::SCI_GETLINEVISIBLE, 2UL));
}

TEST(SQLEditor, WidensItsMarginWithItsLines)
{
    const auto editor = editorWith(QStringLiteral("a"));
    const int narrow = editor->marginWidth(0);
    editor->setWholeText(QStringLiteral("\n").repeated(12345));
    EXPECT_GT(editor->marginWidth(0), narrow);
    const int wide = editor->marginWidth(0);
    editor->zoomTo(6);
    EXPECT_GT(editor->marginWidth(0), wide);
    editor->resetZoom();
    EXPECT_EQ(editor->marginWidth(0), wide);
}

TEST(SQLEditor, FollowsPreferencesAndPalette)
{
    const auto editor = editorWith(QStringLiteral("select"));
    KNPreferences preferences = KNPreferences::current();
    const KNPreferences before = preferences;
    preferences.tabWidth = 7;
    preferences.editorFont.setPointSize(21);
    preferences.save();
    EXPECT_EQ(editor->tabWidth(), 7);
    EXPECT_EQ(editor->lexer()->font(KNSQLLexer::Keyword).pointSize(), 21);
    before.save();
    EXPECT_EQ(editor->tabWidth(), before.tabWidth);

    const QColor light = editor->lexer()->color(KNSQLLexer::Keyword);
    QPalette dark = editor->palette();
    dark.setColor(QPalette::Base, QColor(0x20, 0x20, 0x20));
    editor->setPalette(dark);
    EXPECT_NE(editor->lexer()->color(KNSQLLexer::Keyword), light);
    EXPECT_LT(editor->lexer()->paper(KNSQLLexer::Text).lightness(), 64);
}

TEST(SQLEditor, TypesAtEveryCursorUntilEscape)
{
    const auto editor = editorWith(QStringLiteral("aa\naa"));
    editor->SendScintilla(QsciScintillaBase::SCI_SETSELECTION, 0UL, 0L);
    editor->SendScintilla(QsciScintillaBase::SCI_ADDSELECTION, 3UL, 3L);
    QTest::keyClick(editor.get(), 'x');
    EXPECT_EQ(editor->wholeText(), QStringLiteral("xaa\nxaa"));
    QTest::keyClick(editor.get(), Qt::Key_Escape);
    EXPECT_EQ(editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS), 1);
}

TEST(SQLEditor, TakesNamesThatAreDroppedOnIt)
{
    const auto editor = editorWith(QStringLiteral("select * from "));
    QMimeData data;
    data.setText(QStringLiteral("dbo.Orders"));
    const QPoint end(editor->viewport()->width() - 5, 5); // behind the first line's end
    QDragEnterEvent enter(end, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(editor->viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(end, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(editor->viewport(), &drop);
    EXPECT_EQ(editor->wholeText(), QStringLiteral("select * from dbo.Orders"));
}

TEST(SQLEditor, LeavesTheProgramsKeysToTheProgram)
{
    const auto editor = editorWith(QStringLiteral("Text"));
    editor->selectAll();
    for (const char *const keys :
         {"Esc",          "F5",          "F3",       "F8",     "Ctrl+Return", "Ctrl+E", "Ctrl+Shift+Return",
          "Ctrl+.",       "Ctrl+R",      "Ctrl+U",   "Ctrl+N", "Ctrl+O",      "Ctrl+S", "Ctrl+Shift+S",
          "Ctrl+W",       "Ctrl+T",      "Ctrl+G",   "Ctrl+F", "Ctrl+H",      "Ctrl+/", "Ctrl+0",
          "Ctrl+Shift+R", "Ctrl+PgDown", "Ctrl+Tab", "Ctrl+Q", "Ctrl+="}) {
        const QKeyCombination key = QKeySequence(QString::fromLatin1(keys))[0];
        QKeyEvent override(QEvent::ShortcutOverride, key.key(), key.keyboardModifiers());
        override.ignore();
        QApplication::sendEvent(editor.get(), &override);
        EXPECT_FALSE(override.isAccepted()) << keys;
    }
    EXPECT_EQ(editor->wholeText(), QStringLiteral("Text"));
}

TEST(SQLEditor, ReplacesSeveralPiecesAsOneStep)
{
    const auto editor = editorWith(Emoji + QStringLiteral("a b a"));
    editor->replaceRanges({{{2, 1}, QStringLiteral("long")}, {{6, 1}, Emoji}});
    EXPECT_EQ(editor->wholeText(), Emoji + QStringLiteral("long b ") + Emoji);
    editor->undo();
    EXPECT_EQ(editor->wholeText(), Emoji + QStringLiteral("a b a"));
}
