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
        const QString expected = q("Read-only: ") + q(one.reason);
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
    EXPECT_EQ(section().editState(), q("Editable"));
    EXPECT_FALSE(bar().isVisible());
    type(0, 1, q("Eins €"));
    EXPECT_EQ(shown(0, 1), q("Eins €"));
    EXPECT_TRUE(bar().isVisible());
    EXPECT_EQ(bar().applyButton()->text(), q("&Apply 1 Change"));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("one"));
    RecordingQueryPreview *const sheet = preview();
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->titles().title, q("Apply 1 change to dbo.GridRows?"));
    EXPECT_EQ(
        sheet->statements,
        q("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\tdbo.GridRows\r\nSET\r\n\tname = N'Eins €'\r\nWHERE\r\n\t"
          "id = 1 AND name = 'one'\r\n"));
    EXPECT_FALSE(editing()->isEditable());
    sheet->cancel();
    EXPECT_TRUE(editing()->isEditable());
    EXPECT_TRUE(WindowTesting::settle());
    applyAll();
    EXPECT_EQ(shown(0, 1), q("Eins €"));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("Eins €"));
    EXPECT_FALSE(bar().isVisible());
}

TEST_F(ResultEditing, NamesTheTableAsTheQueryDoesAndKeepsTheSessionsOptions)
{
    open("SELECT * FROM GridRows ORDER BY id");
    type(1, 2, q("2.25"));
    EXPECT_TRUE(preview()->statements.contains(q("UPDATE\r\n\tGridRows\r\n")));
    previews.last->cancel();
    EXPECT_TRUE(WindowTesting::settle());
    applyAll();
    EXPECT_EQ(stored("SELECT amount FROM dbo.GridRows WHERE id = 2"), q("2.25"));
    run("SELECT @@OPTIONS & 256");
    EXPECT_EQ(shown(0, 0), q("256"));
}

TEST_F(ResultEditing, TouchesOnlyTheTableOfTheQuerysSchema)
{
    execute("CREATE SCHEMA gridtest");
    execute("CREATE TABLE gridtest.GridRows (id int NOT NULL PRIMARY KEY, name nvarchar(40) NULL)");
    execute("INSERT INTO gridtest.GridRows VALUES (1, N'one'), (2, N'two')");
    open("SELECT id, name FROM gridtest.GridRows ORDER BY id");
    type(0, 1, q("changed"));
    select(1, 0);
    alerts.answer = 1;
    press(Qt::Key_Delete, Qt::ControlModifier);
    applyAll();
    EXPECT_EQ(stored("SELECT COUNT(*) FROM gridtest.GridRows WHERE name = N'changed'"), q("1"));
    EXPECT_EQ(stored("SELECT COUNT(*) FROM gridtest.GridRows"), q("1"));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("one"));
    EXPECT_EQ(stored("SELECT COUNT(*) FROM dbo.GridRows"), q("3"));
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
    EXPECT_EQ(editor->text(), q("x"));
    QTest::keyClick(editor, Qt::Key_Escape);
    EXPECT_TRUE(editing()->edits().isEmpty());
    const QRect cell = grid().visualRect(grid().model()->index(1, 1));
    QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(grid().viewport(), Qt::LeftButton, {}, cell.center());
    editor = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->text(), q("two"));
    press(Qt::Key_Escape);
}

TEST_F(ResultEditing, RejectsWhatIsNoValue)
{
    open();
    type(0, 2, q("abc"));
    EXPECT_TRUE(editing()->edits().isEmpty());
    EXPECT_TRUE(bar().text().startsWith(q("amount: Enter a number")));
    select(0, 4);
    press(Qt::Key_F2);
    EXPECT_FALSE(hasEditor()) << "a computed column";
    select(0, 3);
    press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(bar().text(), q("done does not take NULL."));
    EXPECT_TRUE(editing()->edits().isEmpty());
}

TEST_F(ResultEditing, SetsToNullAndTakesItBack)
{
    open();
    select(0, 1);
    press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(shown(0, 1), q("NULL"));
    type(0, 2, q("9"));
    EXPECT_EQ(editing()->edits().changeCount(), 1);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shown(0, 2), q("1.50"));
    EXPECT_EQ(shown(0, 1), q("NULL"));
    applyAll();
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("NULL"));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(editing()->edits().isEmpty());
}

TEST_F(ResultEditing, AddsAndDeletesRows)
{
    open();
    press(Qt::Key_Insert, Qt::ControlModifier);
    ASSERT_EQ(grid().model()->rowCount(), 4);
    EXPECT_EQ(grid().currentIndex(), grid().model()->index(3, 0));
    type(3, 0, q("4"));
    type(3, 1, q("four"));
    select(0, 0);
    grid().selectRows(0, 1, QItemSelectionModel::ClearAndSelect);
    press(Qt::Key_Delete, Qt::ControlModifier);
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_EQ(alerts.questions[0].title, q("Delete 2 rows?"));
    alerts.pending.front()(1);
    EXPECT_EQ(bar().applyButton()->text(), q("&Apply 3 Changes"));
    EXPECT_EQ(grid().model()->rowCount(), 4);
    applyAll();
    ASSERT_EQ(grid().model()->rowCount(), 2);
    EXPECT_EQ(shown(0, 0), q("3"));
    EXPECT_EQ(shown(1, 0), q("4"));
    EXPECT_EQ(shown(1, 3), q("0")) << "the server's default";
    EXPECT_EQ(shown(1, 4), q("8")) << "the server's computed value";
    EXPECT_EQ(stored("SELECT SUM(id) FROM dbo.GridRows"), q("7"));
}

TEST_F(ResultEditing, PastesIntoCellsAndNewRows)
{
    open();
    select(2, 0);
    QApplication::clipboard()->setText(q("3\tthree\t3.5\n5\t\"a\tb\nc\"\t\n"));
    press(Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(grid().model()->rowCount(), 4);
    EXPECT_EQ(shown(2, 1), q("three"));
    EXPECT_EQ(shown(3, 2), q("NULL"));
    applyAll();
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 5"), q("a\tb\nc"));
    EXPECT_EQ(stored("SELECT amount FROM dbo.GridRows WHERE id = 3"), q("3.50"));

    select(0, 2);
    QApplication::clipboard()->setText(q("7\nseven"));
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(editing()->edits().isEmpty()) << "all or nothing";
    select(0, 4);
    QApplication::clipboard()->setText(q("7"));
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(bar().text(), q("twice cannot be written, so nothing was pasted."));
}

TEST_F(ResultEditing, DiscardsAfterAQuestion)
{
    open();
    type(0, 1, q("x"));
    bar().discardButton()->click();
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_FALSE(editing()->edits().isEmpty());
    alerts.pending.front()(1);
    EXPECT_TRUE(editing()->edits().isEmpty());
    EXPECT_EQ(shown(0, 1), q("one"));
}

TEST_F(ResultEditing, AsksBeforeEditsAreLost)
{
    open();
    type(0, 1, q("x"));
    bool isClosed = false;
    tab->prepareToClose([&] { isClosed = true; });
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_TRUE(alerts.questions[0].title.endsWith(q("has 1 edited row that is not applied.")));
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
    type(0, 1, q("mine"));
    EXPECT_EQ(shown(0, 1), q("mine"));
    type(1, 1, q("mine, too"));
    EXPECT_EQ(shown(1, 1), q("mine, too"));
    EXPECT_EQ(shown(0, 1), q("mine"));
    execute("UPDATE dbo.GridRows SET name = N'theirs' WHERE id = 2");
    EXPECT_EQ(failure(),
              q("id 2: the row was changed or deleted by somebody else. Run the query again to see its "
                "values."));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("one")) << "half done";
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 2"), q("theirs"));
    execute("DELETE dbo.GridRows WHERE id = 2");
    EXPECT_TRUE(failure().startsWith(q("id 2: the row was changed or deleted")));
    EXPECT_EQ(shown(1, 1), q("mine, too"));
}

TEST_F(ResultEditing, RollsBackWhenTheServerRefusesALaterRow)
{
    open();
    type(0, 1, q("mine"));
    type(2, 0, q("1"));
    EXPECT_FALSE(failure().isEmpty());
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("one"));
    EXPECT_FALSE(tab->status().hasOpenTransaction);
}

TEST_F(ResultEditing, IsPartOfAnOpenTransaction)
{
    run("BEGIN TRAN UPDATE dbo.GridRows SET amount = 100 WHERE id = 1");
    open("SELECT * FROM dbo.GridRows ORDER BY id");
    ASSERT_TRUE(tab->status().hasOpenTransaction);
    type(2, 0, q("1"));
    EXPECT_FALSE(failure().isEmpty());
    EXPECT_TRUE(tab->status().hasOpenTransaction);
    press(Qt::Key_Z, Qt::ControlModifier);
    type(2, 1, q("three"));
    applyAll();
    EXPECT_TRUE(tab->status().hasOpenTransaction);
    run("SELECT amount, name FROM dbo.GridRows WHERE id IN (1, 3) ORDER BY id");
    EXPECT_EQ(shown(0, 0), q("100.00")) << "the savepoint was too early";
    EXPECT_EQ(shown(1, 1), q("three"));
    run("ROLLBACK");
    EXPECT_EQ(stored("SELECT COUNT(*) FROM dbo.GridRows WHERE name = N'three' OR amount = 100"), q("0"));
}

TEST_F(ResultEditing, IsRefusedInAnotherDatabaseAndLeavesTheTransactionAlone)
{
    run("BEGIN TRAN UPDATE dbo.GridRows SET amount = 100 WHERE id = 3");
    open();
    type(0, 1, q("x"));
    tab->changeDatabase(q("library"));
    ASSERT_TRUE(waitFor([&] { return tab->status().database == q("library"); }));
    EXPECT_TRUE(failure().startsWith(q("The rows were read from the database \"shop\"")));
    EXPECT_TRUE(tab->status().hasOpenTransaction);
    editing()->discard();
    run("SELECT @@TRANCOUNT, name, (SELECT amount FROM shop.dbo.GridRows WHERE id = 3) FROM "
        "shop.dbo.GridRows WHERE "
        "id = 1");
    EXPECT_EQ(shown(0, 0), q("1"));
    EXPECT_EQ(shown(0, 1), q("one"));
    EXPECT_EQ(shown(0, 2), q("100.00"));
    run("ROLLBACK");
}

TEST_F(ResultEditing, IsCancelledWhileALockIsAwaited)
{
    QueryTab other(*details);
    other.setText(q("BEGIN TRAN UPDATE dbo.GridRows SET amount = 7 WHERE id = 2"));
    open();
    other.run();
    ASSERT_TRUE(waitFor([&] { return !other.isRunning() && other.status().hasOpenTransaction; }));
    type(0, 1, q("mine"));
    type(1, 1, q("waits"));
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
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("one"));
}

TEST_F(ResultEditing, KeepsTheEditsWhenTheConnectionIsLost)
{
    SampleServerFixture server;
    tab = std::make_unique<QueryTab>(*DesktopTesting::settingsFor(server, q("shop")));
    tab->show();
    tab->activateWindow();
    open("SELECT * FROM dbo.OrderLines ORDER BY OrderId, LineNumber");
    type(0, 3, q("77"));
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
    EXPECT_EQ(shown(0, 3), q("77"));
}

TEST_F(ResultEditing, RunsWithoutAPreviewIfThePreferencesSaySo)
{
    KNPreferences preferences = KNPreferences::current();
    preferences.previewsRowChanges = false;
    preferences.save();
    RecordingProgressSheets sheets;
    open();
    type(0, 1, q("quick"));
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(previews.last);
    ASSERT_TRUE(waitFor([&] { return editing()->edits().isEmpty(); }));
    ASSERT_EQ(sheets.all.size(), 1U);
    EXPECT_EQ(sheets.all[0]->labels, QStringList{q("Applying 1 change…")});
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("quick"));
    execute("UPDATE dbo.GridRows SET name = N'theirs' WHERE id = 2");
    type(1, 1, q("x"));
    press(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return !alerts.errors.empty() && editing()->isEditable(); }));
    EXPECT_TRUE(alerts.errors[0].localizedDescription().startsWith(q("id 2: ")));
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
    EXPECT_EQ(form->windowTitle(), q("Edit Row of dbo.GridRows"));
    EXPECT_EQ(form->model()->index(1, KNEditRowModel::Value).data().toString(), q("two"));
    EXPECT_EQ(form->model()->index(3, KNEditRowModel::Value).data().toString(), q("0"));
    form->reject();
    EXPECT_TRUE(WindowTesting::settle());
}

TEST_F(ResultEditing, ShowsEditsInASortedResult)
{
    open();
    section().sort(0, Qt::DescendingOrder);
    ASSERT_TRUE(waitFor([&] { return shown(0, 0) == q("3"); }));
    type(0, 1, q("three"));
    section().sort(0, Qt::AscendingOrder);
    ASSERT_TRUE(waitFor([&] { return shown(0, 0) == q("1"); }));
    EXPECT_EQ(shown(2, 1), q("three"));
    applyAll();
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 3"), q("three"));
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
    type(0, 1, q("x"));
    RecordingQueryPreview *const sheet = preview();
    ASSERT_TRUE(sheet);
    EXPECT_TRUE(sheet->report.pair.differs());
    EXPECT_EQ(sheet->statements, sheet->report.pair.exact);
    sheet->accept(sheet->report.pair.corrected);
    ASSERT_TRUE(waitFor([&] { return editing()->isEditable(); }));
    EXPECT_EQ(stored("SELECT name FROM dbo.[grid.rows]"), q("x"));
    EXPECT_TRUE(WindowTesting::settle());
    execute("DROP TABLE dbo.[grid.rows]");
    run("SELECT * FROM dbo.[Order Details, \"quoted\"]");
    EXPECT_TRUE(waitFor([&] {
        return section().editState() == q("Read-only: tables with such a name cannot be edited here");
    })) << section().editState().toStdString();
}

TEST_F(ResultEditing, UsesCorrectedStatementsIfTheyArePreferred)
{
    const QString key = q("MSSQLUseCorrectedStatements");
    KNUserDefaults::standardUserDefaults()->setObject(key, true);
    open("SELECT * FROM GridRows ORDER BY id");
    type(0, 1, q("x"));
    RecordingQueryPreview *const sheet = preview();
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->statements,
              q("UPDATE\r\n\tdbo.GridRows\r\nSET\r\n\tname = 'x'\r\nWHERE\r\n\tid = 1 AND name "
                "= 'one'\r\n"));
    sheet->cancel();
    KNUserDefaults::standardUserDefaults()->setObject(key, false);
}

TEST_F(ResultEditing, FailsWhereTheServerDoesNotCount)
{
    run("SET NOCOUNT ON");
    open();
    type(0, 1, q("x"));
    EXPECT_TRUE(failure().startsWith(q("id 1: the server did not report how many rows were changed.")));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("one"));
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
    type(0, 1, q("x"));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(editing()->edits().isEmpty());
    type(0, 1, q("x"));
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
    panels.answer = {folder.filePath(q("value.bin"))};
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
    EXPECT_EQ(stored("SELECT raw FROM dbo.GridBytes"), q("0x00FF0A"));
    execute("DROP TABLE dbo.GridBytes");
}

TEST_F(ResultEditing, CountsTheRowsOfTheStatementAndNotThoseOfATrigger)
{
    execute("CREATE TABLE dbo.GridLog (id int NOT NULL)");
    execute("CREATE TRIGGER dbo.GridRowsLogged ON dbo.GridRows AFTER UPDATE AS INSERT INTO dbo.GridLog (id) "
            "SELECT id "
            "FROM dbo.GridRows");
    open();
    type(0, 1, q("x"));
    applyAll();
    EXPECT_EQ(stored("SELECT COUNT(*) FROM dbo.GridLog"), q("3"));
    execute("DROP TABLE dbo.GridLog");
}
