#include "Desktop/Preferences/PreferencesDialog.h"
#include "SQL/Scope/KNSQLDialect.h"
#include "SQL/Snippets/KNSnippetFile.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/TestText.h"
#include "Support/WindowTesting.h"
#include "UI/Completion/KNCompletionPopup.h"
#include "UI/Completion/KNEditorCompletion.h"
#include "UI/Dialogs/KNCautionBar.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "UI/Snippets/KNEditorSnippet.h"
#include "UI/Snippets/KNSnippetStops.h"
#include "UI/Snippets/KNSnippetStore.h"
#include "UI/Snippets/KNSnippetsDialog.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

namespace SnippetSessionTests {

TEST(SnippetStops, FollowEditsOfTheCurrentStop)
{
    KNSnippetStops stops({{{2, 5}, {10, 13}}, {{5, 7}}, {{20, 20}}}, {0, 20});
    stops.noteDeletion(10, 3); // the selected text, from the last place on
    stops.noteDeletion(2, 3);
    EXPECT_EQ(stops.current(), (KNSnippetStops::Ranges{{2, 2}, {7, 7}}));
    stops.noteInsertion(7, 1);
    stops.noteInsertion(2, 1);
    EXPECT_EQ(stops.current(), (KNSnippetStops::Ranges{{2, 3}, {8, 9}}));
    EXPECT_TRUE(stops.move(1));
    EXPECT_EQ(stops.current(), (KNSnippetStops::Ranges{{3, 5}}));
    EXPECT_TRUE(stops.move(1));
    EXPECT_TRUE(stops.isLast());
    EXPECT_EQ(stops.current(), (KNSnippetStops::Ranges{{16, 16}}));
    EXPECT_FALSE(stops.move(1));
    EXPECT_EQ(stops.whole(), (KNSnippetStops::Range{0, 16}));
}

/// A query whose editor is used with real keys.
class SnippetSession : public testing::Test
{
protected:
    SnippetSession()
    {
        KNPreferences preferences;
        preferences.completesWhileTyping = false; // Tab then always goes to the next stop
        preferences.save();
        tab.resize(800, 600);
        tab.show();
        tab.activateWindow();
        editor->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&tab));
        snippet = editor->findChild<KNEditorSnippet *>();
    }

    ~SnippetSession() override { KNPreferences().save(); }

    void type(const char *text) { QTest::keyClicks(editor, q(text)); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(editor, key, modifiers);
    }
    void insert(const char *text) { snippet->insert({editor->selectedRange().location, 0}, q(text)); }
    std::string text() const { return tab.text().toStdString(); }
    QString selected() const { return editor->textOfRange(editor->selectedRange()); }

    QueryTab tab{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
    KNSQLEditor *editor = tab.editor();
    KNEditorSnippet *snippet = nullptr;
};

TEST_F(SnippetSession, IsOfferedAndAcceptedInTheList)
{
    type("sel");
    press(Qt::Key_Space, Qt::ControlModifier);
    const KNCompletionPopup *const popup = tab.completion()->popup();
    ASSERT_TRUE(popup && popup->isVisible());
    ASSERT_EQ(popup->items().first().kind, KNCompletionItem::Kind::Keyword);
    ASSERT_EQ(popup->items().at(1).name, q("select"));
    EXPECT_EQ(popup->items().at(1).kind, KNCompletionItem::Kind::Snippet);
    EXPECT_FALSE(popup->model()->index(1, 0).data(Qt::DecorationRole).value<QIcon>().isNull());
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(text(), "SELECT *\nFROM dbo.TableName\nWHERE 1 = 1;");
    EXPECT_EQ(selected(), q("*"));
    type("1");
    press(Qt::Key_Tab);
    EXPECT_EQ(selected(), q("dbo"));
    press(Qt::Key_Tab);
    EXPECT_EQ(selected(), q("TableName"));
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(selected(), q("dbo"));
    type("hr");
    press(Qt::Key_Tab);
    type("Staff");
    press(Qt::Key_Tab);
    EXPECT_EQ(selected(), q("1 = 1"));
    press(Qt::Key_Tab);
    EXPECT_EQ(text(), "SELECT 1\nFROM hr.Staff\nWHERE 1 = 1;");
    EXPECT_EQ(editor->selectedRange(), (KNRange{editor->wholeText().size(), 0}));
    EXPECT_FALSE(snippet->isActive());
    press(Qt::Key_Tab);
    EXPECT_EQ(text(), "SELECT 1\nFROM hr.Staff\nWHERE 1 = 1;\t");
}

TEST_F(SnippetSession, EditsEqualStopsTogether)
{
    insert("/* \xC3\xA4 */ SET @${1:i} = @${1} + @${2:j};\nPRINT @$1;$0");
    type("no");
    EXPECT_EQ(text(), "/* \xC3\xA4 */ SET @no = @no + @j;\nPRINT @no;");
    press(Qt::Key_Backspace);
    press(Qt::Key_Tab);
    EXPECT_EQ(selected(), q("j"));
    type("k");
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    type("m");
    EXPECT_EQ(text(), "/* \xC3\xA4 */ SET @m = @m + @k;\nPRINT @m;");
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    type("!");
    EXPECT_EQ(text(), "/* \xC3\xA4 */ SET @m = @m + @k;\nPRINT @m;!");
}

TEST_F(SnippetSession, EndsWithEscape)
{
    insert("${1:a} ${1} ${2:b}");
    EXPECT_EQ(editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS), 2);
    press(Qt::Key_Escape);
    EXPECT_FALSE(snippet->isActive());
    EXPECT_EQ(editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS), 1);
    type("x");
    EXPECT_EQ(tab.text().count(u'x'), 1);
}

TEST_F(SnippetSession, EndsWhenTheCursorLeaves)
{
    editor->setWholeText(q("\nSELECT 1"));
    insert("${1:a} ${2:b}");
    EXPECT_TRUE(snippet->isActive());
    editor->selectRange({6, 0});
    EXPECT_TRUE(WindowTesting::waitFor([&] { return !snippet->isActive(); }));
}

TEST_F(SnippetSession, IsOneUndoStep)
{
    type("x ");
    const std::string before = text();
    insert("BEGIN\n\t$0\nEND");
    EXPECT_EQ(text(), before + "BEGIN\n\t\nEND");
    editor->undo();
    EXPECT_EQ(text(), before);
}

TEST_F(SnippetSession, EndsWhenItIsUndone)
{
    insert("${1:a} ${2:b}");
    EXPECT_TRUE(snippet->isActive());
    editor->undo();
    EXPECT_EQ(text(), "");
    EXPECT_FALSE(snippet->isActive());
    insert("${1:a} ${2:b}");
    editor->setWholeText(q("other"));
    EXPECT_FALSE(snippet->isActive());
}

TEST_F(SnippetSession, TakesTheIndentationOfItsLine)
{
    editor->setWholeText(q("\t x"));
    editor->selectRange({2, 1});
    snippet->insert({2, 1}, q("BEGIN\n\t$0\nEND"));
    EXPECT_EQ(text(), "\t BEGIN\n\t \t\n\t END");
    EXPECT_EQ(editor->selectedRange(), (KNRange{11, 0}));
}

/// The dialog of the snippets of the real dialect.
class SnippetsDialog : public testing::Test
{
protected:
    SnippetsDialog() { RecordingAlerts::install(); }
    ~SnippetsDialog() override
    {
        dialog.reset();
        QFile::remove(path());
        reload();
    }

    QString path() const { return KNSnippetFile::path(store().dialect()); }
    static KNSnippetStore &store()
    {
        return *KNSnippetStore::forSettings(*DesktopTesting::settingsFor(SampleServerFixture::shared()));
    }
    static void reload()
    {
        bool isLoaded = false;
        store().load([&](const KNError &) { isLoaded = true; });
        EXPECT_TRUE(WindowTesting::waitFor([&] { return isLoaded; }));
    }
    void open()
    {
        dialog = std::make_unique<KNSnippetsDialog>(store());
        dialog->show();
        const auto *const caution = dialog->findChild<KNCautionBar *>();
        ASSERT_TRUE(
            WindowTesting::waitFor([&] { return button("Add")->isEnabled() || !caution->text().isEmpty(); }));
    }
    QListWidget *list() const { return dialog->findChild<QListWidget *>(); }
    QLineEdit *name() const { return dialog->findChildren<QLineEdit *>().first(); }
    QPlainTextEdit *text() const { return dialog->findChild<QPlainTextEdit *>(); }
    QPushButton *button(const char *title) const
    {
        for (QPushButton *const found : dialog->findChildren<QPushButton *>()) {
            if (found->text().remove(u'&') == q(title))
                return found;
        }
        return nullptr;
    }
    void accept()
    {
        button("OK")->click();
        EXPECT_TRUE(WindowTesting::waitFor([&] { return !dialog->isVisible(); }));
    }

    std::unique_ptr<KNSnippetsDialog> dialog;
};

TEST_F(SnippetsDialog, SavesANewSnippet)
{
    open();
    EXPECT_EQ(list()->count(), store().originals().size());
    EXPECT_FALSE(button("Restore Originals")->isEnabled());
    button("Add")->click();
    EXPECT_FALSE(button("OK")->isEnabled());
    QTest::keyClicks(name(), q("mine"));
    QTest::keyClicks(text(), q("BEGIN"));
    QTest::keyClick(text(), Qt::Key_Return);
    QTest::keyClicks(text(), q("    $0"));
    accept();
    EXPECT_EQ(store().snippets().last(), (KNSnippet{q("mine"), QStringLiteral(""), q("BEGIN\n\t$0")}));
    KNError error;
    EXPECT_EQ(KNSnippetFile::read(store().dialect(), &error), store().snippets());
    open();
    button("Restore Originals")->click();
    accept();
    EXPECT_EQ(store().snippets(), store().originals());
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(SnippetsDialog, ChangesAndRemovesSnippets)
{
    open();
    const QString second = store().originals().at(1).name;
    list()->setCurrentRow(0);
    name()->selectAll();
    QTest::keyClicks(name(), second);
    EXPECT_FALSE(button("OK")->isEnabled());
    EXPECT_TRUE(dialog->findChild<KNCautionBar *>()->text().contains(second));
    list()->setCurrentRow(1);
    button("Remove")->click();
    EXPECT_TRUE(button("OK")->isEnabled());
    accept();
    EXPECT_EQ(store().snippets().size(), store().originals().size() - 1);
    EXPECT_EQ(store().snippets().first().name, second);
    EXPECT_EQ(store().snippets().first().text, store().originals().first().text);
}

TEST_F(SnippetsDialog, ChangesNothingWhenItIsCancelled)
{
    open();
    button("Remove")->click();
    dialog->reject();
    EXPECT_EQ(store().snippets(), store().originals());
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(SnippetsDialog, ReportsABrokenFileAndLeavesIt)
{
    QDir().mkpath(QFileInfo(path()).path());
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[broken");
    file.close();
    open();
    EXPECT_TRUE(dialog->findChild<KNCautionBar *>()->text().contains(path()));
    EXPECT_EQ(list()->count(), store().originals().size());
    for (const char *const title : {"OK", "Add", "Remove", "Restore Originals"})
        EXPECT_FALSE(button(title)->isEnabled()) << title;
    EXPECT_FALSE(name()->isEnabled());
    list()->setCurrentRow(1);
    EXPECT_TRUE(dialog->findChild<KNCautionBar *>()->text().contains(path()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "[broken");
}

TEST_F(SnippetsDialog, IsOpenedFromThePreferences)
{
    PreferencesDialog preferences({}, nullptr, &store());
    preferences.show();
    for (QPushButton *const found : preferences.findChildren<QPushButton *>()) {
        if (found->text() == q("Edit Snippets\xE2\x80\xA6"))
            found->click();
    }
    ASSERT_NE(preferences.findChild<KNSnippetsDialog *>(), nullptr);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_TRUE(preferences.findChild<KNSnippetsDialog *>()->isVisible());
}

} // namespace SnippetSessionTests
