#include "Autocomplete/KNAutocompleteHelper.h"
#include "Autocomplete/KNCompletionCatalog.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "Support/WindowTesting.h"
#include "UI/Completion/KNCompletionPopup.h"
#include "UI/Completion/KNEditorCompletion.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QAccessible>

#include <ctime>

namespace {

using WindowTesting::waitFor;

/// A query on the sample server whose names are loaded, used with real keys.
class EditorCompletion : public testing::Test
{
protected:
    EditorCompletion()
    {
        tab.resize(800, 600);
        tab.show();
        tab.activateWindow();
        tab.editor()->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&tab));
        const auto details = tab.databaseConnectionDetails();
        EXPECT_TRUE(waitFor([&] {
            const auto catalog = details->sharedAutocompleteHelper()->catalogForConnection(*details);
            return catalog && !catalog->databases.isEmpty();
        }));
    }
    ~EditorCompletion() override { KNPreferences().save(); }

    void type(const char *text) { QTest::keyClicks(tab.editor(), QString::fromLatin1(text)); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(tab.editor(), key, modifiers);
    }
    bool isOpen() const { return tab.completion()->popup() && tab.completion()->popup()->isVisible(); }
    QStringList shown() const
    {
        QStringList names;
        if (!isOpen())
            return names;
        for (const KNCompletionItem &item : tab.completion()->popup()->items())
            names.append(item.name);
        return names;
    }
    QString text() const { return tab.text(); }

    QueryTab tab{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
};

} // namespace

TEST_F(EditorCompletion, ShowsColumnsOfAnAliasThatIsDeclaredBehindTheCaret)
{
    type("SELECT o. FROM Orders o");
    press(Qt::Key_Home);
    for (int step = 0; step < 8; ++step)
        press(Qt::Key_Right);
    EXPECT_FALSE(isOpen());
    type(".");
    press(Qt::Key_Delete); // the first dot
    press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(shown().mid(0, 3), QStringList({q("OrderId"), q("CustomerId"), q("OrderedAt")}));
}

TEST_F(EditorCompletion, OpensBehindADotAndAcceptsWithTab)
{
    tab.setText(q("SELECT o FROM Orders o"));
    tab.editor()->selectRange({8, 0});
    type(".");
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(shown().first(), q("OrderId"));
    type("cu");
    EXPECT_EQ(shown(), QStringList(q("CustomerId")));
    press(Qt::Key_Tab);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(), q("SELECT o.CustomerId FROM Orders o"));
    EXPECT_EQ(tab.editor()->selectedRange().location, 19);
}

TEST_F(EditorCompletion, OpensAfterTwoCharactersAndAcceptsWithReturn)
{
    type("SELECT * FROM O");
    EXPECT_FALSE(isOpen());
    type("rd");
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(shown().mid(1, 2), QStringList({q("OrderLines"), q("Orders")}));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(text(), q("SELECT * FROM OrderLines"));
    EXPECT_FALSE(isOpen());
}

TEST_F(EditorCompletion, ReturnBreaksTheLineWhenNothingIsChosen)
{
    type("SELECT * FROM Orders wh");
    ASSERT_TRUE(isOpen()); // WHERE, or the beginning of an alias
    press(Qt::Key_Return);
    EXPECT_EQ(text(), q("SELECT * FROM Orders wh\n"));
    EXPECT_FALSE(isOpen());
}

TEST_F(EditorCompletion, ControlSpaceOpensAndEscapeCloses)
{
    type("SELECT * FROM ");
    EXPECT_FALSE(isOpen());
    press(Qt::Key_Space, Qt::ControlModifier);
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(text(), q("SELECT * FROM "));
    EXPECT_TRUE(shown().contains(q("Customers")));
    press(Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(), q("SELECT * FROM "));
}

TEST_F(EditorCompletion, StaysAwayFromStringsCommentsAndNewNames)
{
    type("SELECT 'customers");
    EXPECT_FALSE(isOpen());
    tab.editor()->setWholeText(QString());
    type("-- SELECT o.customer");
    EXPECT_FALSE(isOpen());
    tab.editor()->setWholeText(QString());
    type("SELECT OrderId AS customer");
    EXPECT_FALSE(isOpen());
    tab.editor()->setWholeText(QString());
    type("CREATE TABLE custom");
    EXPECT_FALSE(isOpen());
}

TEST_F(EditorCompletion, ClosesWhenTheNameIsLeft)
{
    type("SELECT * FROM Ord");
    ASSERT_TRUE(isOpen());
    type(" ");
    EXPECT_FALSE(isOpen());
    type("Cust");
    ASSERT_FALSE(shown().contains(q("Customers"))); // an alias
    press(Qt::Key_Home);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditorCompletion, BackspaceWidensTheList)
{
    type("SELECT * FROM OrderL");
    EXPECT_EQ(shown().first(), q("OrderLines"));
    EXPECT_FALSE(shown().contains(q("Orders")));
    press(Qt::Key_Backspace);
    EXPECT_TRUE(waitFor([&] { return shown().contains(q("Orders")); }));
}

TEST_F(EditorCompletion, QuotesNamesThatNeedIt)
{
    type("SELECT * FROM hr.staff");
    ASSERT_TRUE(isOpen());
    press(Qt::Key_Tab);
    EXPECT_EQ(text(), q("SELECT * FROM hr.[Staff, by department]"));
}

TEST_F(EditorCompletion, ReplacesABracketThatWasTypedInAPair)
{
    type("SELECT * FROM hr.[st");
    EXPECT_EQ(text(), q("SELECT * FROM hr.[st]"));
    ASSERT_TRUE(isOpen());
    press(Qt::Key_Tab);
    EXPECT_EQ(text(), q("SELECT * FROM hr.[Staff, by department]"));
}

TEST_F(EditorCompletion, PreferenceTurnsSuggestionsWhileTypingOff)
{
    KNPreferences preferences = KNPreferences::current();
    preferences.completesWhileTyping = false;
    preferences.save();
    type("SELECT * FROM Ord");
    EXPECT_FALSE(isOpen());
    press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_TRUE(isOpen());
}

TEST_F(EditorCompletion, PreferenceChoosesTheAcceptingKeys)
{
    using Keys = KNPreferences::CompletionKeys;
    KNPreferences preferences = KNPreferences::current();
    EXPECT_EQ(preferences.completionKeys, Keys::ReturnAndTab);
    const auto after = [&](Keys accepting, Qt::Key key) {
        preferences.completionKeys = accepting;
        preferences.save();
        tab.editor()->setWholeText(q("SELECT o FROM Orders o"));
        tab.editor()->selectRange({8, 0});
        type(".cu");
        EXPECT_TRUE(isOpen());
        press(key);
        EXPECT_FALSE(isOpen());
        return text();
    };
    const QString accepted = q("SELECT o.CustomerId FROM Orders o");
    EXPECT_EQ(after(Keys::ReturnAndTab, Qt::Key_Return), accepted);
    EXPECT_EQ(after(Keys::ReturnAndTab, Qt::Key_Tab), accepted);
    EXPECT_EQ(after(Keys::Tab, Qt::Key_Tab), accepted);
    EXPECT_EQ(after(Keys::Tab, Qt::Key_Return), q("SELECT o.cu\n FROM Orders o"));
    EXPECT_EQ(after(Keys::Return, Qt::Key_Return), accepted);
    EXPECT_EQ(after(Keys::Return, Qt::Key_Tab), q("SELECT o.cu\t FROM Orders o"));
}

TEST_F(EditorCompletion, KnowsANewTableAfterItsBatchHasRun)
{
    tab.setText(q("CREATE TABLE dbo.Freshly (Made int)"));
    tab.run();
    ASSERT_TRUE(waitFor([&] { return !tab.isRunning(); }));
    tab.editor()->setWholeText(q("SELECT * FROM "));
    tab.editor()->selectRange({14, 0});
    EXPECT_TRUE(waitFor([&] {
        press(Qt::Key_Space, Qt::ControlModifier);
        return shown().contains(q("Freshly"));
    }));
    tab.setText(q("DROP TABLE dbo.Freshly"));
    tab.run();
    ASSERT_TRUE(waitFor([&] { return !tab.isRunning(); }));
}

TEST_F(EditorCompletion, ScreenReadersHearNameKindAndType)
{
    tab.setText(q("SELECT o FROM Orders o"));
    tab.editor()->selectRange({8, 0});
    type(".");
    ASSERT_TRUE(isOpen());
    const KNCompletionPopup &popup = *tab.completion()->popup();
    EXPECT_EQ(popup.accessibleName(), q("Completions"));
    EXPECT_EQ(popup.model()->index(0, 0).data(Qt::AccessibleTextRole).toString(),
              q("OrderId, primary key column, int, o"));
    EXPECT_EQ(popup.model()->index(1, 0).data(Qt::AccessibleTextRole).toString(),
              q("CustomerId, column, int, o"));
}

TEST_F(EditorCompletion, MarksColumnsOfThePrimaryKey)
{
    tab.setText(q("SELECT o. FROM Orders o"));
    tab.editor()->selectRange({9, 0});
    const auto items = tab.completion()->completions();
    ASSERT_GT(items.size(), 1);
    EXPECT_EQ(items[0].name, q("OrderId"));
    EXPECT_TRUE(items[0].isKey);
    EXPECT_EQ(items[1].name, q("CustomerId"));
    EXPECT_FALSE(items[1].isKey);
}

TEST_F(EditorCompletion, AKeyInALongTextCostsLittle)
{
    QString script;
    for (int line = 0; line < 10'000; ++line)
        script +=
            QStringLiteral("SELECT o.OrderId, COUNT(*) FROM dbo.Orders o WHERE o.OrderId > %1 -- line\n")
                .arg(line);
    tab.setText(script);
    tab.completion()->completions(); // as when the first name is typed
    const auto seconds = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    tab.editor()->selectRange({script.size() / 2, 0});
    constexpr int Keys = 20;
    double spent = 0;
    for (int key = 0; key < Keys; ++key) {
        tab.editor()->insertText(q("x"));
        const double begin = seconds();
        tab.completion()->completions();
        spent += seconds() - begin;
    }
    std::printf("%.1f ms for each key in 10,000 lines\n", spent * 1000 / Keys);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LE(spent * 1000 / Keys, 16.0);
#endif
}
