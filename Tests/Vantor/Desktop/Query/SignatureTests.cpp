#include "Autocomplete/KNAutocompleteHelper.h"
#include "Autocomplete/KNCompletionCatalog.h"
#include "Desktop/Query/QueryTab.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/Completion/KNCompletionPopup.h"
#include "UI/Completion/KNEditorCompletion.h"
#include "UI/Completion/KNEditorSignature.h"
#include "UI/Completion/KNSignaturePopup.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "Vantor/Desktop/DesktopTesting.h"

namespace {

using WindowTesting::waitFor;

/// A query on the sample server in which calls are typed.
class EditorSignature : public testing::Test
{
protected:
    EditorSignature()
    {
        tab.resize(800, 600);
        tab.show();
        tab.activateWindow();
        tab.editor()->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&tab));
    }
    ~EditorSignature() override { KNPreferences().save(); }

    void loadNames()
    {
        const auto details = tab.databaseConnectionDetails();
        ASSERT_TRUE(waitFor([&] {
            const auto catalog = details->sharedAutocompleteHelper()->catalogForConnection(*details);
            return catalog && !catalog->databases.isEmpty();
        }));
    }
    void type(const char *text) { QTest::keyClicks(tab.editor(), QString::fromLatin1(text)); }
    void press(Qt::Key key) { QTest::keyClick(tab.editor(), key); }
    const KNSignaturePopup *popup() const { return tab.signature()->popup(); }
    bool isOpen() const { return popup() && popup()->isVisible(); }
    QString marked() const { return isOpen() ? popup()->markedParameter() : QStringLiteral("(closed)"); }

    QueryTab tab{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
};

} // namespace

TEST_F(EditorSignature, OpensAtAParenthesisAndFollowsTheCaret)
{
    type("SELECT REPLACE");
    EXPECT_FALSE(isOpen());
    type("(");
    EXPECT_EQ(marked(), QStringLiteral("text"));
    EXPECT_EQ(popup()->signature().details, QStringLiteral("Text in which one text is replaced by another."));
    EXPECT_LT(popup()->width(), tab.width() / 2); // no wider than its text
    type("a,");
    EXPECT_EQ(marked(), QStringLiteral("find"));
    press(Qt::Key_Left);
    EXPECT_TRUE(waitFor([&] { return marked() == QStringLiteral("text"); }));
    press(Qt::Key_End);
    type("b,c)");
    EXPECT_FALSE(isOpen());
}

TEST_F(EditorSignature, OpensBehindTheNameOfAProcedure)
{
    loadNames();
    type("EXEC sales.PlaceOrder");
    press(Qt::Key_Escape); // the list of names
    EXPECT_FALSE(isOpen());
    type(" ");
    EXPECT_EQ(marked(), QStringLiteral("@CustomerId int"));
    type("1,");
    EXPECT_EQ(marked(), QStringLiteral("@ProductId int"));
}

TEST_F(EditorSignature, IsClosedByEscapeBehindTheListOfNames)
{
    loadNames();
    type("SELECT ISNULL(cu");
    ASSERT_TRUE(isOpen());
    ASSERT_TRUE(tab.completion()->popup() && tab.completion()->popup()->isVisible());
    press(Qt::Key_Escape);
    EXPECT_FALSE(tab.completion()->popup()->isVisible());
    EXPECT_TRUE(isOpen());
    press(Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    type("x"); // stays closed until the next argument
    EXPECT_FALSE(isOpen());
    press(Qt::Key_Escape);
    type(",");
    EXPECT_EQ(marked(), QStringLiteral("replacement"));
}

TEST_F(EditorSignature, StaysClosedWhereNothingIsOfferedWhileTyping)
{
    KNPreferences preferences;
    preferences.completesWhileTyping = false;
    preferences.save();
    type("SELECT REPLACE(a, ");
    EXPECT_FALSE(isOpen());
}

TEST_F(EditorSignature, ClosesWithTheFocus)
{
    type("SELECT REPLACE(");
    ASSERT_TRUE(isOpen());
    tab.setFocusProxy(nullptr);
    tab.setFocusPolicy(Qt::StrongFocus);
    tab.setFocus();
    EXPECT_FALSE(isOpen());
}
