#include "Autocomplete/KNAutocompleteHelper.h"
#include "Autocomplete/KNCompletionCatalog.h"
#include "Database/KNDatabaseResultSet.h"
#include "Database/VantorDatabaseClient.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/TestText.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QHelpEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QStatusBar>
#include <QToolTip>

namespace NamesTests {

using WindowTesting::waitFor;

/// A window on the sample server with a query in which names are looked up with real keys and clicks.
class EditorNames : public testing::Test
{
protected:
    EditorNames()
        : alerts(RecordingAlerts::install())
    {
        const VantorDBCPtr details =
            DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
        details->setConnectionId(
            QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()));
        window = new MainWindow(*details);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        tab = DesktopTesting::currentQuery(*window);
        tab->editor()->setFocus();
    }
    ~EditorNames() override
    {
        delete window;
        EXPECT_TRUE(WindowTesting::settle());
        EXPECT_TRUE(alerts.messages.empty());
    }

    void loadNames()
    {
        const auto details = tab->databaseConnectionDetails();
        ASSERT_TRUE(waitFor([&] {
            const auto catalog = details->sharedAutocompleteHelper()->catalogForConnection(*details);
            return catalog && !catalog->databases.isEmpty();
        }));
    }
    /// Shows a text with the cursor at the bar.
    void show(const char *utf8)
    {
        QString text = q(utf8);
        const qsizetype caret = text.indexOf(u'|');
        tab->setText(text.remove(caret, 1));
        tab->editor()->selectRange({caret, 0});
    }
    /// The middle of the character at a position of the first line.
    QPoint pointAt(int position) const
    {
        const auto x = [&](int at) {
            return tab->editor()->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, long(at));
        };
        const auto height = tab->editor()->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL);
        return {int((x(position) + x(position + 1)) / 2), int(height / 2)};
    }
    /// Lets the pointer rest above a character.
    void hover(int position)
    {
        QWidget *const viewport = tab->editor()->viewport();
        const QPoint point = pointAt(position);
        QMouseEvent move(QEvent::MouseMove, point, viewport->mapToGlobal(point), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &move);
        QHelpEvent rest(QEvent::ToolTip, point, viewport->mapToGlobal(point));
        QCoreApplication::sendEvent(viewport, &rest);
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(tab->editor(), key, modifiers);
    }
    /// The query that opens in front; null if none does.
    QueryTab *opened() const
    {
        waitFor([&] { return DesktopTesting::currentQuery(*window) != tab || !notice().isEmpty(); });
        QueryTab *const current = DesktopTesting::currentQuery(*window);
        return current == tab ? nullptr : current;
    }
    QString definition(const char *text)
    {
        window->showDocument(tab);
        show(text);
        press(Qt::Key_F12);
        const QueryTab *const shown = opened();
        return shown ? shown->text() : q("nothing: ") + notice();
    }
    QString notice() const { return window->statusBar()->currentMessage(); }

    RecordingAlerts &alerts;
    MainWindow *window;
    QueryTab *tab;
};

TEST_F(EditorNames, DefinitionOpensInATabWithTheNameOfTheObject)
{
    show("SELECT * FROM sales.OrderTo|tals");
    press(Qt::Key_F12);
    const QueryTab *const shown = opened();
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->title(), q("OrderTotals"));
    EXPECT_EQ(shown->databaseConnectionDetails()->database(), q("shop"));
    EXPECT_TRUE(shown->text().contains(q("CREATE VIEW sales.OrderTotals WITH SCHEMABINDING AS")));
    EXPECT_FALSE(shown->isRunning());
}

TEST_F(EditorNames, DefinitionIsKnownForEveryKindOfObject)
{
    EXPECT_TRUE(definition("SELECT * FROM Ord|ers").contains(q("CREATE TABLE")));
    EXPECT_TRUE(definition("EXEC sales.Place|Order").contains(q("CREATE PROCEDURE sales.PlaceOrder")));
    EXPECT_TRUE(definition("SELECT sales.OrderTotal|(1)").contains(q("CREATE FUNCTION sales.OrderTotal")));
    EXPECT_TRUE(
        definition("SELECT * FROM hr.Sub|ordinates(1)").contains(q("CREATE FUNCTION hr.Subordinates")));
    EXPECT_TRUE(definition("DROP TRIGGER dbo.Orders_Aud|it").contains(q("CREATE TRIGGER dbo.Orders_Audit")));
    EXPECT_EQ(definition("SELECT * FROM Cli|ents").trimmed().remove(u'\r'),
              q("CREATE SYNONYM dbo.Clients FOR [dbo].[Customers]\nGO"));
    EXPECT_TRUE(definition("DECLARE @f dbo.Fl|ag").contains(q("CREATE TYPE dbo.Flag FROM bit NOT NULL")));
    EXPECT_TRUE(definition("SELECT * FROM [dotted.name]|").contains(q("[dotted.name]")));
    EXPECT_TRUE(definition("SELECT * FROM library..Boo|ks").contains(q("CREATE TABLE")));
    EXPECT_EQ(DesktopTesting::currentQuery(*window)->databaseConnectionDetails()->database(), q("library"));
}

TEST_F(EditorNames, DefinitionOfAnAliasIsThatOfItsTable)
{
    loadNames();
    EXPECT_TRUE(definition("SELECT e|.Name FROM hr.Employees e").contains(q("Employees")));
    EXPECT_TRUE(definition("SELECT c.Company|Name FROM dbo.Customers AS c").contains(q("Customers")));
}

TEST_F(EditorNames, DefinitionOfADeclaredNameIsItsPlaceInTheText)
{
    show("DECLARE @id int\nSELECT @i|d");
    press(Qt::Key_F12);
    EXPECT_EQ(tab->editor()->selectedRange().location, 8);
    show("WITH recent AS (SELECT 1 AS n)\nSELECT * FROM rec|ent");
    press(Qt::Key_F12);
    EXPECT_EQ(tab->editor()->selectedRange().location, 5);
    EXPECT_EQ(window->documents().size(), 1);
}

TEST_F(EditorNames, UnknownNamesAreReportedInTheStatusLine)
{
    EXPECT_EQ(definition("SELECT * FROM dbo.Now|here"),
              q("nothing: dbo.Nowhere is not in the database shop, or may not be seen by this login."));
    EXPECT_EQ(definition("SELECT 1 |"), q("nothing: There is no name at the cursor."));
    EXPECT_EQ(definition("SELECT * FROM far.shop.dbo.Ord|ers"),
              q("nothing: far.shop.dbo.Orders is on another server."));
    EXPECT_EQ(definition("SELECT LEFT|('a', 1)"), q("nothing: LEFT(text, count)"));
    EXPECT_EQ(window->documents().size(), 1);
}

TEST_F(EditorNames, ControlClickOpensTheDefinition)
{
    show("SELECT * FROM Orders|");
    QTest::mouseClick(tab->editor()->viewport(), Qt::LeftButton, Qt::ControlModifier, pointAt(16));
    const QueryTab *const shown = opened();
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->title(), q("Orders"));
}

TEST_F(EditorNames, ControlClickBesideANameMovesTheCursor)
{
    show("SELECT 1|");
    QTest::mouseClick(tab->editor()->viewport(), Qt::LeftButton, Qt::ControlModifier, pointAt(2));
    EXPECT_LT(tab->editor()->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS), 4);
    EXPECT_EQ(notice(), QString());
}

TEST_F(EditorNames, ColumnsAndKeysAreShownAsResults)
{
    show("SELECT o|.OrderId FROM OrderLines o");
    press(Qt::Key_F1, Qt::AltModifier);
    QueryTab *const shown = opened();
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->title(), q("OrderLines"));
    ASSERT_TRUE(waitFor([&] { return !shown->isRunning(); }));
    EXPECT_EQ(shown->status().outcome, KNDocumentStatus::Outcome::Succeeded);
    EXPECT_GT(shown->status().rowCount, 5);
    // The same columns again: no second tab.
    window->showDocument(tab);
    press(Qt::Key_F1, Qt::AltModifier);
    EXPECT_EQ(opened(), shown);
    EXPECT_EQ(window->documents().size(), 2);
}

TEST_F(EditorNames, ContextMenuOffersBothAtANameOnly)
{
    tab->setText(q("SELECT * FROM Orders"));
    const auto titlesAt = [&](qsizetype location) {
        QMenu menu;
        Q_EMIT tab->editor()->contextMenuAboutToShow(&menu, location);
        QStringList titles;
        for (const QAction *action : menu.actions())
            titles.append(action->text().remove(u'&'));
        return titles;
    };
    EXPECT_TRUE(titlesAt(16).contains(q("Go to Definition")));
    EXPECT_TRUE(titlesAt(16).contains(q("Show Columns and Keys")));
    EXPECT_FALSE(titlesAt(2).contains(q("Go to Definition")));
}

TEST_F(EditorNames, HoverDescribesTheNameBelowThePointer)
{
    tab->setText(q("SELECT OrderId FROM Orders"));
    hover(9); // the names may be loaded only now
    ASSERT_TRUE(waitFor([] { return QToolTip::isVisible(); }));
    EXPECT_TRUE(QToolTip::text().contains(q("Orders.OrderId int not null, primary key")));
    hover(2); // SELECT
    EXPECT_TRUE(waitFor([] { return !QToolTip::isVisible(); }));
    hover(22);
    ASSERT_TRUE(waitFor([] { return QToolTip::isVisible(); }));
    EXPECT_TRUE(QToolTip::text().contains(q("table dbo.Orders\n    OrderId int not null, primary key\n")));
    QToolTip::hideText();
}

TEST_F(EditorNames, HoverWaitsForNamesThatAreNotLoaded)
{
    const SampleServerFixture server; // nothing of it is known yet
    const VantorDBCPtr details = DesktopTesting::settingsFor(server, q("shop"));
    QueryTab fresh(*details);
    fresh.show();
    tab = &fresh;
    tab->setText(q("SELECT OrderId FROM Orders"));
    hover(22);
    EXPECT_FALSE(QToolTip::isVisible());
    EXPECT_TRUE(waitFor([] { return QToolTip::isVisible(); }));
    QToolTip::hideText();
}

TEST_F(EditorNames, ReloadLoadsTheNamesAgain)
{
    loadNames();
    int updates = 0;
    const auto observer = KNNotificationCenter::defaultCenter()->addObserver(
        KNAutocompleteHelper::AutoCompleteUpdatedNotificationName,
        [&](const QString &, const QVariantMap &) { ++updates; });
    const auto details = tab->databaseConnectionDetails();
    const auto client = details->createNewClient();
    KNError error;
    ASSERT_TRUE(client->connect(&error));
    client->executeQuery(q("CREATE TABLE dbo.ReloadedNames (Id int)"), &error);
    ASSERT_FALSE(error);
    QAction *const reload = window->actions()->action(q("reloadNames"));
    EXPECT_TRUE(reload->isEnabled());
    reload->trigger();
    EXPECT_EQ(notice(), q("The names of shop are loaded again."));
    EXPECT_TRUE(waitFor([&] {
        const auto catalog = details->sharedAutocompleteHelper()->catalogForConnection(*details);
        return catalog->find({q("ReloadedNames")}) != nullptr;
    }));
    EXPECT_TRUE(waitFor([&] { return updates > 0; }));
    client->executeQuery(q("DROP TABLE dbo.ReloadedNames"), &error);
    details->sharedAutocompleteHelper()->requestEntriesForDatabaseConnectionDetails(*details, true);
    EXPECT_TRUE(WindowTesting::settle());
}

} // namespace NamesTests
