#include "Foundation/KNUserDefaults.h"
#include "UI/RowEditing/KNEditRowModel.h"
#include "UI/RowEditing/KNEditRowWindowController.h"
#include "Vantor/Desktop/Query/ResultEditingTest.h"

#include <QAction>
#include <QClipboard>
#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>

using WindowTesting::waitFor;

using ResultEditing = ResultEditingTest;

TEST_F(ResultEditing, SaysWhyAResultIsReadOnly)
{
    const struct
    {
        const char *query;
        const char *reason;
    } cases[] = {
        {"SELECT g.* FROM dbo.GridRows g JOIN dbo.GridRows h ON g.id = h.id", "joins several tables"},
        {"SELECT * FROM dbo.GridRows SELECT 1", "several results"},
        {"SELECT name FROM dbo.GridRows", "id is not in the result"},
        {"SELECT id AS id FROM dbo.GridRows", "its columns have aliases or expressions"},
        {"SELECT * FROM sys.objects", "objects is no table with a primary key"},
        {"SELECT id FROM dbo.GridRows\nGO\nSET NOCOUNT OFF", "other statements ran after it"},
        {"SELECT 1 FROM master.sys.objects", "its columns have aliases or expressions"},
    };
    for (const auto &one : cases) {
        run(one.query);
        const QString expected = u("Read-only: ") + u(one.reason);
        EXPECT_TRUE(waitFor([&] { return section().editState() == expected; }))
            << one.query << ": " << section().editState().toStdString();
        select(0, 0);
        press(Qt::Key_F2);
        EXPECT_EQ(grid().findChild<QLineEdit *>(), nullptr);
    }
}

TEST_F(ResultEditing, ChangesAValueAndReadsItBack)
{
    open();
    EXPECT_EQ(section().editState(), u("Editable"));
    EXPECT_FALSE(bar().isVisible());
    type(0, 1, u("Eins €"));
    EXPECT_EQ(shown(0, 1), u("Eins €"));
    EXPECT_TRUE(bar().isVisible());
    EXPECT_EQ(bar().applyButton()->text(), u("&Apply 1 Change"));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), u("one"));
    RecordingQueryPreview *const sheet = preview();
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->titles().title, u("Apply 1 change to dbo.GridRows?"));
    EXPECT_EQ(
        sheet->statements,
        u("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\tdbo.GridRows\r\nSET\r\n\tname = N'Eins €'\r\nWHERE\r\n\t"
          "id = 1 AND name = 'one'\r\n"));
    EXPECT_FALSE(editing()->isEditable());
    sheet->cancel();
    EXPECT_TRUE(editing()->isEditable());
    EXPECT_TRUE(WindowTesting::settle());
    applyAll();
    EXPECT_EQ(shown(0, 1), u("Eins €"));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), u("Eins €"));
    EXPECT_FALSE(bar().isVisible());
}

TEST_F(ResultEditing, NamesTheTableAsTheQueryDoesAndKeepsTheSessionsOptions)
{
    open("SELECT * FROM GridRows ORDER BY id");
    type(1, 2, u("2.25"));
    EXPECT_TRUE(preview()->statements.contains(u("UPDATE\r\n\tGridRows\r\n")));
    previews.last->cancel();
    EXPECT_TRUE(WindowTesting::settle());
    applyAll();
    EXPECT_EQ(stored("SELECT amount FROM dbo.GridRows WHERE id = 2"), u("2.25"));
    run("SELECT @@OPTIONS & 256");
    EXPECT_EQ(shown(0, 0), u("256"));
}

TEST_F(ResultEditing, TouchesOnlyTheTableOfTheQuerysSchema)
{
    execute("CREATE SCHEMA gridtest");
    execute("CREATE TABLE gridtest.GridRows (id int NOT NULL PRIMARY KEY, name nvarchar(40) NULL)");
    execute("INSERT INTO gridtest.GridRows VALUES (1, N'one'), (2, N'two')");
    open("SELECT id, name FROM gridtest.GridRows ORDER BY id");
    type(0, 1, u("changed"));
    select(1, 0);
    alerts.answer = 1;
    press(Qt::Key_Delete, Qt::ControlModifier);
    applyAll();
    EXPECT_EQ(stored("SELECT COUNT(*) FROM gridtest.GridRows WHERE name = N'changed'"), u("1"));
    EXPECT_EQ(stored("SELECT COUNT(*) FROM gridtest.GridRows"), u("1"));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), u("one"));
    EXPECT_EQ(stored("SELECT COUNT(*) FROM dbo.GridRows"), u("3"));
    execute("DROP TABLE gridtest.GridRows");
    execute("DROP SCHEMA gridtest");
}

TEST_F(ResultEditing, BeginsWithALetterOrADoubleClick)
{
    open();
    select(0, 1);
    press(Qt::Key_X);
    auto *editor = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->text(), u("x"));
    QTest::keyClick(editor, Qt::Key_Escape);
    EXPECT_TRUE(editing()->edits().isEmpty());
    const QRect cell = grid().visualRect(grid().model()->index(1, 1));
    QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(grid().viewport(), Qt::LeftButton, {}, cell.center());
    editor = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->text(), u("two"));
    press(Qt::Key_Escape);
}

TEST_F(ResultEditing, RejectsWhatIsNoValue)
{
    open();
    type(0, 2, u("abc"));
    EXPECT_TRUE(editing()->edits().isEmpty());
    EXPECT_TRUE(bar().text().startsWith(u("amount: Enter a number")));
    select(0, 4);
    press(Qt::Key_F2);
    EXPECT_FALSE(hasEditor()) << "a computed column";
    select(0, 3);
    press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(bar().text(), u("done does not take NULL."));
    EXPECT_TRUE(editing()->edits().isEmpty());
}

TEST_F(ResultEditing, SetsToNullAndTakesItBack)
{
    open();
    select(0, 1);
    press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(shown(0, 1), u("NULL"));
    type(0, 2, u("9"));
    EXPECT_EQ(editing()->edits().changeCount(), 1);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shown(0, 2), u("1.50"));
    EXPECT_EQ(shown(0, 1), u("NULL"));
    applyAll();
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), u("NULL"));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(editing()->edits().isEmpty());
}

TEST_F(ResultEditing, AddsAndDeletesRows)
{
    open();
    press(Qt::Key_Insert, Qt::ControlModifier);
    ASSERT_EQ(grid().model()->rowCount(), 4);
    EXPECT_EQ(grid().currentIndex(), grid().model()->index(3, 0));
    type(3, 0, u("4"));
    type(3, 1, u("four"));
    select(0, 0);
    grid().selectRows(0, 1, QItemSelectionModel::ClearAndSelect);
    press(Qt::Key_Delete, Qt::ControlModifier);
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_EQ(alerts.questions[0].title, u("Delete 2 rows?"));
    alerts.pending.front()(1);
    EXPECT_EQ(bar().applyButton()->text(), u("&Apply 3 Changes"));
    EXPECT_EQ(grid().model()->rowCount(), 4);
    applyAll();
    ASSERT_EQ(grid().model()->rowCount(), 2);
    EXPECT_EQ(shown(0, 0), u("3"));
    EXPECT_EQ(shown(1, 0), u("4"));
    EXPECT_EQ(shown(1, 3), u("0")) << "the server's default";
    EXPECT_EQ(shown(1, 4), u("8")) << "the server's computed value";
    EXPECT_EQ(stored("SELECT SUM(id) FROM dbo.GridRows"), u("7"));
}

TEST_F(ResultEditing, PastesIntoCellsAndNewRows)
{
    open();
    select(2, 0);
    QApplication::clipboard()->setText(u("3\tthree\t3.5\n5\t\"a\tb\nc\"\t\n"));
    press(Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(grid().model()->rowCount(), 4);
    EXPECT_EQ(shown(2, 1), u("three"));
    EXPECT_EQ(shown(3, 2), u("NULL"));
    applyAll();
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 5"), u("a\tb\nc"));
    EXPECT_EQ(stored("SELECT amount FROM dbo.GridRows WHERE id = 3"), u("3.50"));

    select(0, 2);
    QApplication::clipboard()->setText(u("7\nseven"));
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(editing()->edits().isEmpty()) << "all or nothing";
    select(0, 4);
    QApplication::clipboard()->setText(u("7"));
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(bar().text(), u("twice cannot be written, so nothing was pasted."));
}

TEST_F(ResultEditing, DiscardsAfterAQuestion)
{
    open();
    type(0, 1, u("x"));
    bar().discardButton()->click();
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_FALSE(editing()->edits().isEmpty());
    alerts.pending.front()(1);
    EXPECT_TRUE(editing()->edits().isEmpty());
    EXPECT_EQ(shown(0, 1), u("one"));
}

TEST_F(ResultEditing, AsksBeforeEditsAreLost)
{
    open();
    type(0, 1, u("x"));
    bool isClosed = false;
    tab->prepareToClose([&] { isClosed = true; });
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_TRUE(alerts.questions[0].title.endsWith(u("has 1 edited row that is not applied.")));
    EXPECT_FALSE(isClosed);
    alerts.pending.back()(0);
    EXPECT_FALSE(isClosed);
    tab->run();
    ASSERT_EQ(alerts.questions.size(), 2U);
    EXPECT_FALSE(tab->isRunning());
    alerts.pending.back()(1);
    EXPECT_TRUE(waitFor([&] { return !tab->isRunning() && tab->messages()->isComplete(); }));
    EXPECT_EQ(tab->resultsPane()->pendingChanges(), 0);
}

TEST_F(ResultEditing, FailsForARowThatSomebodyElseChanged)
{
    open();
    type(0, 1, u("mine"));
    EXPECT_EQ(shown(0, 1), u("mine"));
    type(1, 1, u("mine, too"));
    EXPECT_EQ(shown(1, 1), u("mine, too"));
    EXPECT_EQ(shown(0, 1), u("mine"));
    execute("UPDATE dbo.GridRows SET name = N'theirs' WHERE id = 2");
    EXPECT_EQ(failure(),
              u("id 2: the row was changed or deleted by somebody else. Run the query again to see its "
                "values."));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), u("one")) << "half done";
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 2"), u("theirs"));
    execute("DELETE dbo.GridRows WHERE id = 2");
    EXPECT_TRUE(failure().startsWith(u("id 2: the row was changed or deleted")));
    EXPECT_EQ(shown(1, 1), u("mine, too"));
}

TEST_F(ResultEditing, RollsBackWhenTheServerRefusesALaterRow)
{
    open();
    type(0, 1, u("mine"));
    type(2, 0, u("1"));
    EXPECT_FALSE(failure().isEmpty());
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), u("one"));
    EXPECT_FALSE(tab->status().hasOpenTransaction);
}

TEST_F(ResultEditing, IsPartOfAnOpenTransaction)
{
    run("BEGIN TRAN UPDATE dbo.GridRows SET amount = 100 WHERE id = 1");
    open("SELECT * FROM dbo.GridRows ORDER BY id");
    ASSERT_TRUE(tab->status().hasOpenTransaction);
    type(2, 0, u("1"));
    EXPECT_FALSE(failure().isEmpty());
    EXPECT_TRUE(tab->status().hasOpenTransaction);
    press(Qt::Key_Z, Qt::ControlModifier);
    type(2, 1, u("three"));
    applyAll();
    EXPECT_TRUE(tab->status().hasOpenTransaction);
    run("SELECT amount, name FROM dbo.GridRows WHERE id IN (1, 3) ORDER BY id");
    EXPECT_EQ(shown(0, 0), u("100.00")) << "the savepoint was too early";
    EXPECT_EQ(shown(1, 1), u("three"));
    run("ROLLBACK");
    EXPECT_EQ(stored("SELECT COUNT(*) FROM dbo.GridRows WHERE name = N'three' OR amount = 100"), u("0"));
}

TEST_F(ResultEditing, IsRefusedInAnotherDatabaseAndLeavesTheTransactionAlone)
{
    run("BEGIN TRAN UPDATE dbo.GridRows SET amount = 100 WHERE id = 3");
    open();
    type(0, 1, u("x"));
    tab->changeDatabase(u("library"));
    ASSERT_TRUE(waitFor([&] { return tab->status().database == u("library"); }));
    EXPECT_TRUE(failure().startsWith(u("The rows were read from the database \"shop\"")));
    EXPECT_TRUE(tab->status().hasOpenTransaction);
    editing()->discard();
    run("SELECT @@TRANCOUNT, name, (SELECT amount FROM shop.dbo.GridRows WHERE id = 3) FROM "
        "shop.dbo.GridRows WHERE "
        "id = 1");
    EXPECT_EQ(shown(0, 0), u("1"));
    EXPECT_EQ(shown(0, 1), u("one"));
    EXPECT_EQ(shown(0, 2), u("100.00"));
    run("ROLLBACK");
}

TEST_F(ResultEditing, IsCancelledWhileALockIsAwaited)
{
    QueryTab other(*details);
    other.setText(u("BEGIN TRAN UPDATE dbo.GridRows SET amount = 7 WHERE id = 2"));
    open();
    other.run();
    ASSERT_TRUE(waitFor([&] { return !other.isRunning() && other.status().hasOpenTransaction; }));
    type(0, 1, u("mine"));
    type(1, 1, u("waits"));
    RecordingQueryPreview *const sheet = preview();
    ASSERT_TRUE(sheet);
    sheet->accept(sheet->statements);
    QTest::qWait(300);
    EXPECT_TRUE(sheet->isRunning()) << "no lock was awaited";
    tab->run(); // waits for the session, and asks about the edits then
    EXPECT_FALSE(tab->isRunning());
    sheet->cancel();
    ASSERT_TRUE(waitFor([&] { return !sheet->isRunning(); }));
    ASSERT_EQ(sheet->outcomes.size(), 1U);
    EXPECT_TRUE(sheet->outcomes[0].wasCancelled);
    EXPECT_EQ(sheet->outcomes[0].changes, KNStatementOutcome::Changes::None);
    sheet->cancel();
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(editing()->edits().changeCount(), 2);
    other.perform(KNDocumentAction::Rollback);
    ASSERT_TRUE(waitFor([&] { return !other.status().hasOpenTransaction; }));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), u("one"));
}

TEST_F(ResultEditing, KeepsTheEditsWhenTheConnectionIsLost)
{
    SampleServerFixture server;
    tab = std::make_unique<QueryTab>(*DesktopTesting::settingsFor(server, u("shop")));
    tab->show();
    tab->activateWindow();
    open("SELECT * FROM dbo.OrderLines ORDER BY OrderId, LineNumber");
    type(0, 3, u("77"));
    RecordingQueryPreview *const sheet = preview();
    ASSERT_TRUE(sheet);
    server.kill();
    sheet->accept(sheet->statements);
    ASSERT_TRUE(waitFor([&] { return !sheet->isRunning(); }));
    ASSERT_EQ(sheet->outcomes.size(), 1U);
    EXPECT_TRUE(sheet->outcomes[0].error);
    sheet->cancel();
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(editing()->edits().changeCount(), 1);
    EXPECT_TRUE(editing()->isEditable());
    EXPECT_EQ(shown(0, 3), u("77"));
}

TEST_F(ResultEditing, RunsWithoutAPreviewIfThePreferencesSaySo)
{
    KNPreferences preferences = KNPreferences::current();
    preferences.previewsRowChanges = false;
    preferences.save();
    RecordingProgressSheets sheets;
    open();
    type(0, 1, u("quick"));
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(previews.last);
    ASSERT_TRUE(waitFor([&] { return editing()->edits().isEmpty(); }));
    ASSERT_EQ(sheets.all.size(), 1U);
    EXPECT_EQ(sheets.all[0]->labels, QStringList{u("Applying 1 change…")});
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), u("quick"));
    execute("UPDATE dbo.GridRows SET name = N'theirs' WHERE id = 2");
    type(1, 1, u("x"));
    press(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return !alerts.errors.empty() && editing()->isEditable(); }));
    EXPECT_TRUE(alerts.errors[0].localizedDescription().startsWith(u("id 2: ")));
    EXPECT_FALSE(editing()->edits().isEmpty());
}

TEST_F(ResultEditing, OffersTheFormOfARow)
{
    open("SELECT id, name FROM dbo.GridRows ORDER BY id");
    select(1, 1);
    press(Qt::Key_F2, Qt::ControlModifier | Qt::ShiftModifier);
    KNEditRowWindowController *form = nullptr;
    ASSERT_TRUE(waitFor([&] { return (form = tab->findChild<KNEditRowWindowController *>()) != nullptr; }));
    ASSERT_TRUE(waitFor([&] { return form->model()->rowCount() == 5; }));
    EXPECT_EQ(form->windowTitle(), u("Edit Row of dbo.GridRows"));
    EXPECT_EQ(form->model()->index(1, KNEditRowModel::Value).data().toString(), u("two"));
    EXPECT_EQ(form->model()->index(3, KNEditRowModel::Value).data().toString(), u("0"));
    form->reject();
    EXPECT_TRUE(WindowTesting::settle());
}

TEST_F(ResultEditing, ShowsEditsInASortedResult)
{
    open();
    section().sort(0, Qt::DescendingOrder);
    ASSERT_TRUE(waitFor([&] { return shown(0, 0) == u("3"); }));
    type(0, 1, u("three"));
    section().sort(0, Qt::AscendingOrder);
    ASSERT_TRUE(waitFor([&] { return shown(0, 0) == u("1"); }));
    EXPECT_EQ(shown(2, 1), u("three"));
    applyAll();
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 3"), u("three"));
}

TEST_F(ResultEditing, LeavesNewRowsOutOfCopies)
{
    open();
    press(Qt::Key_Insert, Qt::ControlModifier);
    grid().selectAll();
    EXPECT_EQ(grid().selectedRows().rowCount(), 3);
    for (const auto &range : grid().selectedCells())
        EXPECT_LE(range.rows.first + range.rows.count, 3);
}

TEST_F(ResultEditing, OffersTheCorrectedStatementForANameThatTheExactOneCannotHold)
{
    execute("CREATE TABLE dbo.[grid.rows] (id int NOT NULL PRIMARY KEY, name nvarchar(40) NULL)");
    execute("INSERT INTO dbo.[grid.rows] VALUES (1, N'one')");
    open("SELECT * FROM dbo.[grid.rows]");
    type(0, 1, u("x"));
    RecordingQueryPreview *const sheet = preview();
    ASSERT_TRUE(sheet);
    EXPECT_TRUE(sheet->report.pair.differs());
    EXPECT_EQ(sheet->statements, sheet->report.pair.exact);
    sheet->accept(sheet->report.pair.corrected);
    ASSERT_TRUE(waitFor([&] { return editing()->isEditable(); }));
    EXPECT_EQ(stored("SELECT name FROM dbo.[grid.rows]"), u("x"));
    EXPECT_TRUE(WindowTesting::settle());
    execute("DROP TABLE dbo.[grid.rows]");
    run("SELECT * FROM dbo.[Order Details, \"quoted\"]");
    EXPECT_TRUE(waitFor([&] {
        return section().editState() == u("Read-only: tables with such a name cannot be edited here");
    })) << section().editState().toStdString();
}

TEST_F(ResultEditing, UsesCorrectedStatementsIfTheyArePreferred)
{
    const QString key = u("MSSQLUseCorrectedStatements");
    KNUserDefaults::standardUserDefaults()->setObject(key, true);
    open("SELECT * FROM GridRows ORDER BY id");
    type(0, 1, u("x"));
    RecordingQueryPreview *const sheet = preview();
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->statements,
              u("UPDATE\r\n\tdbo.GridRows\r\nSET\r\n\tname = 'x'\r\nWHERE\r\n\tid = 1 AND name "
                "= 'one'\r\n"));
    sheet->cancel();
    KNUserDefaults::standardUserDefaults()->setObject(key, false);
}

TEST_F(ResultEditing, FailsWhereTheServerDoesNotCount)
{
    run("SET NOCOUNT ON");
    open();
    type(0, 1, u("x"));
    EXPECT_TRUE(failure().startsWith(u("id 1: the server did not report how many rows were changed.")));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), u("one"));
}

TEST_F(ResultEditing, HasItsKeysBeforeThoseOfTheWindow)
{
    QAction shortcut;
    int count = 0;
    QObject::connect(&shortcut, &QAction::triggered, [&] { ++count; });
    shortcut.setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Z)});
    tab->addAction(&shortcut);
    open();
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(count, 1) << "nothing is to be applied";
    type(0, 1, u("x"));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(editing()->edits().isEmpty());
    type(0, 1, u("x"));
    ASSERT_TRUE(preview());
    EXPECT_EQ(count, 1);
    previews.last->cancel();
}

TEST_F(ResultEditing, TakesBytesFromAFile)
{
    execute("CREATE TABLE dbo.GridBytes (id int NOT NULL PRIMARY KEY, raw varbinary(max) NULL)");
    execute("INSERT INTO dbo.GridBytes (id) VALUES (1)");
    const QTemporaryDir folder;
    RecordingFilePanels &panels = RecordingFilePanels::install();
    panels.answer = {folder.filePath(u("value.bin"))};
    open("SELECT * FROM dbo.GridBytes");
    section().editActions()->loadValue();
    ASSERT_TRUE(waitFor([&] { return !alerts.messages.empty(); })) << "there is no such file";
    EXPECT_TRUE(editing()->edits().isEmpty());
    QFile file(panels.answer.first());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("\x00\xff\x0a", 3));
    file.close();
    section().editActions()->loadValue();
    ASSERT_TRUE(waitFor([&] { return !editing()->edits().isEmpty(); }));
    applyAll();
    EXPECT_EQ(stored("SELECT raw FROM dbo.GridBytes"), u("0x00FF0A"));
    execute("DROP TABLE dbo.GridBytes");
}

TEST_F(ResultEditing, CountsTheRowsOfTheStatementAndNotThoseOfATrigger)
{
    execute("CREATE TABLE dbo.GridLog (id int NOT NULL)");
    execute("CREATE TRIGGER dbo.GridRowsLogged ON dbo.GridRows AFTER UPDATE AS INSERT INTO dbo.GridLog (id) "
            "SELECT id "
            "FROM dbo.GridRows");
    open();
    type(0, 1, u("x"));
    applyAll();
    EXPECT_EQ(stored("SELECT COUNT(*) FROM dbo.GridLog"), u("3"));
    execute("DROP TABLE dbo.GridLog");
}
