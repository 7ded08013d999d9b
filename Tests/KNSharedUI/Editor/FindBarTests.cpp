#include "Editor/EditorTesting.h"
#include "UI/Editor/KNFindBar.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

using namespace EditorTesting;

namespace {

/// An editor with its bar, worked as a user does.
class FindBar : public testing::Test
{
protected:
    void begin(const QString &text)
    {
        editor = editorWith(text);
        bar = std::make_unique<KNFindBar>(editor.get());
    }

    template <typename Widget>
    Widget *named(const char *name) const
    {
        for (auto *const widget : bar->findChildren<Widget *>()) {
            if (widget->accessibleName() == QLatin1String(name))
                return widget;
        }
        return nullptr;
    }
    void check(const char *text, bool on = true) const
    {
        for (auto *const box : bar->findChildren<QCheckBox *>()) {
            if (box->text().remove(u'&') == QLatin1String(text))
                box->setChecked(on);
        }
    }
    void find(const QString &pattern)
    {
        if (!bar->isVisible())
            bar->showReplace();
        named<QLineEdit>("Find")->setText(pattern);
    }
    void replaceAllBy(const QString &text)
    {
        named<QLineEdit>("Replace with")->setText(text);
        named<QToolButton>("Replace all matches")->click();
    }
    QString message() const { return named<QLabel>("Matches")->text(); }
    bool says(const QString &text)
    {
        return WindowTesting::waitFor([&] { return message() == text; });
    }

    std::unique_ptr<KNSQLEditor> editor;
    std::unique_ptr<KNFindBar> bar;
};

} // namespace

TEST_F(FindBar, WrapsAroundAtTheEnd)
{
    begin(Emoji + QStringLiteral("ab AB abc"));
    find(QStringLiteral("ab"));
    EXPECT_TRUE(says(QStringLiteral("3 matches")));
    QList<qsizetype> places;
    for (int i = 0; i < 4; ++i) {
        bar->findNext();
        places.append(editor->selectedRange().location);
    }
    EXPECT_EQ(places, (QList<qsizetype>{2, 5, 8, 2}));
    EXPECT_EQ(message(), QStringLiteral("1 of 3"));
    bar->findPrevious();
    EXPECT_EQ(editor->selectedRange().location, 8);
    bar->findPrevious();
    EXPECT_EQ(editor->selectedRange().location, 5);
}

TEST_F(FindBar, MindsCaseAndWords)
{
    begin(QStringLiteral("ab AB abc ab_ a.b"));
    find(QStringLiteral("ab"));
    check("Match case");
    EXPECT_TRUE(says(QStringLiteral("3 matches")));
    check("Whole words");
    EXPECT_TRUE(says(QStringLiteral("1 match")));
    find(QStringLiteral("a.b"));
    EXPECT_TRUE(says(QStringLiteral("1 match")));
    find(QStringLiteral("nowhere"));
    EXPECT_TRUE(says(QStringLiteral("No matches")));
}

TEST_F(FindBar, ReplacesWithCapturesAcrossLines)
{
    begin(QStringLiteral("a = 1\r\nb = 2\r\n"));
    check("Regular expression");
    find(QStringLiteral("^(\\w) = (\\d)$"));
    EXPECT_TRUE(says(QStringLiteral("2 matches")));
    replaceAllBy(QStringLiteral("$2\\t\\1"));
    EXPECT_EQ(editor->wholeText(), QStringLiteral("1\ta\r\n2\tb\r\n"));
    EXPECT_EQ(message(), QStringLiteral("2 replaced"));
    editor->undo();
    EXPECT_EQ(editor->wholeText(), QStringLiteral("a = 1\r\nb = 2\r\n"));
    find(QStringLiteral("1\\R(.)"));
    replaceAllBy(QStringLiteral("\\n\\\\$0"));
    EXPECT_EQ(editor->wholeText(), QStringLiteral("a = \n\\1\r\nb = 2\r\n"));
}

TEST_F(FindBar, TakesAPlainReplacementAsItIs)
{
    begin(QStringLiteral("x.y x.y"));
    find(QStringLiteral("x.y"));
    replaceAllBy(QStringLiteral("$0\\n"));
    EXPECT_EQ(editor->wholeText(), QStringLiteral("$0\\n $0\\n"));
}

TEST_F(FindBar, ReplacesOneMatchAfterTheOther)
{
    begin(QStringLiteral("a a a"));
    find(QStringLiteral("a"));
    named<QLineEdit>("Replace with")->setText(QStringLiteral("aa"));
    bar->replace(); // finds the first
    bar->replace();
    EXPECT_EQ(editor->wholeText(), QStringLiteral("aa a a"));
    bar->replace();
    EXPECT_EQ(editor->wholeText(), QStringLiteral("aa aa a"));
}

TEST_F(FindBar, ReturnReplacesInTheOneFieldAndFindsInTheOther)
{
    begin(QStringLiteral("a a a"));
    find(QStringLiteral("a"));
    auto *const replacement = named<QLineEdit>("Replace with");
    replacement->setText(QStringLiteral("b"));
    QTest::keyClick(bar->field(), Qt::Key_Return);
    EXPECT_EQ(editor->selectedRange(), (KNRange{0, 1}));
    QTest::keyClick(bar->field(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(editor->selectedRange(), (KNRange{4, 1})); // the one before the first
    replacement->setFocus();
    QTest::keyClick(replacement, Qt::Key_Return);
    EXPECT_EQ(editor->wholeText(), QStringLiteral("a a b"));
    EXPECT_EQ(editor->selectedRange(), (KNRange{0, 1}));
}

TEST_F(FindBar, ShowsPositionOfExpressionError)
{
    begin(QStringLiteral("a(b"));
    check("Regular expression");
    check("Whole words");
    find(QStringLiteral("ab(c"));
    EXPECT_TRUE(message().contains(QStringLiteral("parenthes"))) << message().toStdString();
    EXPECT_TRUE(message().endsWith(QStringLiteral("at 5"))) << message().toStdString();
    bar->findNext();
    bar->replaceAll();
    EXPECT_EQ(editor->wholeText(), QStringLiteral("a(b"));
}

TEST_F(FindBar, SkipsEmptyMatches)
{
    begin(QStringLiteral("ab\ncd"));
    check("Regular expression");
    find(QStringLiteral("^"));
    bar->findNext();
    EXPECT_EQ(editor->selectedRange(), (KNRange{3, 0}));
    bar->findNext();
    EXPECT_EQ(editor->selectedRange(), (KNRange{0, 0}));
}

TEST_F(FindBar, UsesSelectionAndRestoresFocus)
{
    begin(QStringLiteral("a (b) (b)"));
    editor->selectRange({2, 3});
    bar->showFind();
    EXPECT_EQ(bar->search().pattern, QStringLiteral("(b)"));
    EXPECT_FALSE(named<QLineEdit>("Replace with")->isVisible());
    QTest::keyClick(named<QLineEdit>("Find"), Qt::Key_Return);
    EXPECT_EQ(editor->selectedRange().location, 6);
    QTest::keyClick(named<QLineEdit>("Find"), Qt::Key_Escape);
    EXPECT_FALSE(bar->isVisible());
}
